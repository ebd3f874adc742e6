#include "window.h"

#include <GL/glut.h>
#include <forms.h>

#include <cstdio>
#include <cstdlib>

#include "boxcount.h"
#include "commands.h"
#include "appforms.h"
#include "overlay.h"
#include "frontend.h"
#include "screenimage.h"
#include "cmdline.h"
#include "settings.h"
#include "util.h"

namespace {

// The window's side of the counting core: the screen image, the graph and
// the file selector.
void RebuildScreenImage(void)
{
    int w = 0, h = 0;
    GetScreenSize(&w, &h);
    BuildScreenImage(w, h);
}

const Frontend window = {RebuildScreenImage, UpdateGraphForm, AskFileName};

void SetTitle(void)
{
    char title[sizeof options.imagename + 64];
    std::snprintf(title, sizeof title, "Talvor : %s (1:%d)", options.imagename, options.scale);
    glutSetWindowTitle(title);
}

} // namespace

void GetScreenSize(int *width, int *height)
{
    *width = glutGet(GLUT_SCREEN_WIDTH);
    *height = glutGet(GLUT_SCREEN_HEIGHT);
}

void CleanExit(void)
{
    std::exit(0);
}

void StartWindowSystem(int *argc, char **argv)
{
    PrintBanner();
    std::fprintf(stderr, "Initialising GLUT\n");
    glutInit(argc, argv);
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH);
    std::fprintf(stderr, "Creating windows\n");
    glutCreateWindow("Talvor");
    glutReshapeWindow(options.screenwidth, options.screenheight);
    glutIdleFunc(HandleIdle);
    glutDisplayFunc(HandleDisplay);
    glutReshapeFunc(HandleReshape);
    glutKeyboardFunc(HandleKeyboard);
    glutSpecialFunc(HandleSpecialKeyboard);
    glutMouseFunc(HandleMouse);
    glutMotionFunc(HandleMouseMotion);
    glutPassiveMotionFunc(HandlePassiveMotion);
    glutVisibilityFunc(HandleVisibility);
    MakeMenus();
    StartForms(argc, argv);
    RegisterFrontend(&window);
}

void RunWindow(void)
{
    PrepareOpenGL();
    glutReshapeWindow(options.screenwidth, options.screenheight);
    SetTitle();
    glutMainLoop();
    // freeglut returns from its loop only when told to; this program never does.
    CleanExit();
}

void PrepareOpenGL(void)
{
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_DITHER);
    glDisable(GL_LINE_SMOOTH);
    glDisable(GL_POINT_SMOOTH);
    glDisable(GL_POLYGON_SMOOTH);
    glDisable(GL_CULL_FACE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glFrontFace(GL_CW);
    // Dark red: it shows only where no image is drawn.
    glClearColor(0.5, 0.0, 0.0, 0.0);
    glDisable(GL_LIGHTING);
}

void UpdateWindow(void)
{
    if (options.quiet)
        return;
    glutReshapeWindow(options.screenwidth, options.screenheight);
    SetTitle();
}

void HandleIdle(void)
{
    // Wall-clock time of the last redraw; -1 until first taken.
    static double tstart = -1.0;
    if (tstart < 0)
        tstart = GetRunTime();

    if (options.processing == 1) {
        if (RegionTooSmall()) {
            // Boxes under one pixel never advance across the region.
            std::fprintf(stderr, "Region too small for box counting\n");
            options.processing = 0;
        } else {
            options.processing = BoxCount(1) ? 0 : 1;
        }
    }

    const double tstop = GetRunTime();
    // While counting, redraw and poll the forms at most ten times a second.
    if (options.processing == 1 && tstop - tstart < 0.1)
        return;
    tstart = tstop;
    glutPostRedisplay();
    if (graphformvisible || optionsformvisible)
        HandleFormObject(fl_check_forms());
}

void HandleDisplay(void)
{
    glDrawBuffer(GL_BACK);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glViewport(0, 0, options.screenwidth, options.screenheight);

    glRasterPos2f(-1, -1);
    glDisable(GL_BLEND);
    glDrawPixels(options.screenwidth, options.screenheight, GL_RGBA, GL_UNSIGNED_BYTE, viewimage);
    glEnable(GL_BLEND);

    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, options.screenwidth, 0, options.screenheight, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    DisplayBoxes();
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);

    glutSwapBuffers();
    if (options.debug == 1)
        std::fprintf(stderr, "Display update, nbox = %d\n", nboxlist);
}

void HandleReshape(int w, int h)
{
    // The window keeps the size of the screen image.
    if (w != options.screenwidth || h != options.screenheight)
        glutReshapeWindow(options.screenwidth, options.screenheight);
    glutPostRedisplay();
}

void HandleVisibility(int state)
{
    // Counting pauses while the window cannot be seen.
    glutIdleFunc(state == GLUT_VISIBLE ? HandleIdle : nullptr);
}

#include "commands.h"

#include <GL/glut.h>
#include <forms.h>

#include <cstdio>
#include <string>

#include "boxcount.h"
#include "appforms.h"
#include "intake.h"
#include "results.h"
#include "settings.h"
#include "window.h"

namespace {

void OpenImage(void)
{
    const char *chosen = AskFileName("TGA file");
    if (chosen == nullptr || chosen[0] == '\0')
        return;
    // Copied first: the selector owns its buffer, and the name is also about
    // to be written into imagename.
    const std::string name = chosen;
    std::snprintf(options.imagename, sizeof options.imagename, "%s", name.c_str());
    if (!LoadTGA(name.c_str())) {
        std::fprintf(stderr, "Creating blank image\n");
        MakeTestImage();
    }
    UpdateImages();
    UpdateWindow();
}

void StartProcessing(void)
{
    options.processing = 1;
    BoxCount(0);
}

} // namespace

void MakeMenus(void)
{
    std::fprintf(stderr, "Creating menus (Right mouse button)\n");
    const int processmenu = glutCreateMenu(HandleProcessMenu);
    glutAddMenuEntry("Start (p)", 1);
    glutAddMenuEntry("Stop (P)", 2);

    glutCreateMenu(HandleMainMenu);
    glutAddMenuEntry("Open new TGA file", 1);
    glutAddMenuEntry("Invert image (i)", 2);
    glutAddMenuEntry("Options (o)", 3);
    glutAddSubMenu("Processing", processmenu);
    glutAddMenuEntry("Show graph (g)", 4);
    glutAddMenuEntry("Save results (s)", 5);
    glutAddMenuEntry("Quit (ESC)", 9);
    glutAttachMenu(GLUT_RIGHT_BUTTON);
}

void HandleMainMenu(int value)
{
    switch (value) {
    case 1:
        OpenImage();
        break;
    case 2:
        InvertImage();
        UpdateImages();
        UpdateWindow();
        glutPostRedisplay();
        break;
    case 3:
        ShowForm(optionsform->optionsform);
        optionsformvisible = 1;
        UpdateOptionForm();
        break;
    case 4:
        ShowForm(graphform->graphform);
        graphformvisible = 1;
        UpdateGraphForm();
        break;
    case 5:
        SaveResults();
        break;
    case 9:
        CleanExit();
    default:
        break;
    }
}

void HandleProcessMenu(int value)
{
    if (value == 1)
        StartProcessing();
    else if (value == 2)
        options.processing = 0;
}

void HandleKeyboard(unsigned char key, int, int)
{
    switch (key) {
    case 27:
    case 'q':
    case 'Q':
        CleanExit();
    case 'p':
        StartProcessing();
        break;
    case 'P':
        options.processing = 0;
        break;
    case 'i':
    case 'I':
        HandleMainMenu(2);
        break;
    case 'o':
    case 'O':
        HandleMainMenu(3);
        break;
    case 'g':
    case 'G':
        HandleMainMenu(4);
        break;
    case 's':
    case 'S':
        HandleMainMenu(5);
        break;
    case 'w':
    case 'W':
        options.writerequest = 1;
        break;
    default:
        break;
    }
}

void HandleSpecialKeyboard(int, int, int) {}

void HandleMouse(int button, int, int, int)
{
    options.mousebutton = button;
}

void HandleMouseMotion(int, int) {}

void HandlePassiveMotion(int, int) {}

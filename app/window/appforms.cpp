#include "appforms.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "settings.h"

FD_optionsform *optionsform = nullptr;
FD_graphform *graphform = nullptr;
int optionsformvisible = 0;
int graphformvisible = 0;

namespace {

void Style(FL_OBJECT *obj, FL_COLOR c1, FL_COLOR c2, int lsize)
{
    fl_set_object_color(obj, c1, c2);
    if (lsize > 0)
        fl_set_object_lsize(obj, lsize);
}

void Fixed(FL_OBJECT *obj)
{
    fl_set_object_resize(obj, FL_RESIZE_NONE);
}

} // namespace

FD_optionsform *create_form_optionsform(void)
{
    auto *fdui = static_cast<FD_optionsform *>(fl_calloc(1, sizeof(FD_optionsform)));
    FL_OBJECT *obj;
    fdui->optionsform = fl_bgn_form(FL_NO_BOX, 331, 211);

    obj = fl_add_box(FL_UP_BOX, 0, 0, 331, 211, "");
    Style(obj, FL_WHITE, FL_COL1, 0);
    Fixed(obj);

    fdui->hide = obj = fl_add_button(FL_NORMAL_BUTTON, 240, 160, 60, 30, "Hide");
    Style(obj, FL_WHITE, FL_COL1, 12);
    Fixed(obj);

    obj = fl_add_text(FL_NORMAL_TEXT, 20, 10, 150, 20, "Options");
    Style(obj, FL_WHITE, FL_MCOL, 14);
    fl_set_object_lalign(obj, FL_ALIGN_LEFT | FL_ALIGN_INSIDE);

    fdui->offsets = obj = fl_add_input(FL_NORMAL_INPUT, 170, 40, 50, 30, "Number of offset samples");
    Style(obj, FL_WHITE, FL_WHITE, 12);
    fdui->boxstart = obj = fl_add_input(FL_NORMAL_INPUT, 170, 80, 50, 30, "Box size range");
    Style(obj, FL_WHITE, FL_WHITE, 12);
    fdui->boxend = obj = fl_add_input(FL_NORMAL_INPUT, 250, 80, 50, 30, "to");
    Style(obj, FL_WHITE, FL_WHITE, 12);
    fdui->factor = obj = fl_add_input(FL_NORMAL_INPUT, 170, 120, 50, 30, "Box reduction factor");
    Style(obj, FL_WHITE, FL_WHITE, 12);

    fl_end_form();
    fdui->optionsform->fdui = fdui;
    return fdui;
}

FD_graphform *create_form_graphform(void)
{
    auto *fdui = static_cast<FD_graphform *>(fl_calloc(1, sizeof(FD_graphform)));
    FL_OBJECT *obj;
    fdui->graphform = fl_bgn_form(FL_NO_BOX, 421, 461);

    obj = fl_add_box(FL_UP_BOX, 0, 0, 421, 461, "");
    Style(obj, FL_WHITE, FL_COL1, 0);
    Fixed(obj);

    fdui->plot = obj = fl_add_xyplot(FL_POINTS_XYPLOT, 20, 30, 380, 370, "");
    Style(obj, FL_WHITE, FL_BLACK, 10);
    Fixed(obj);

    fdui->hide = obj = fl_add_button(FL_NORMAL_BUTTON, 340, 415, 60, 30, "Hide");
    Style(obj, FL_WHITE, FL_COL1, 12);
    Fixed(obj);

    fdui->slope = obj = fl_add_input(FL_NORMAL_INPUT, 130, 410, 110, 30, "Slope estimate");
    fl_set_object_boxtype(obj, FL_NO_BOX);
    fl_set_object_lsize(obj, 12);
    Fixed(obj);

    obj = fl_add_text(FL_NORMAL_TEXT, 5, 10, 100, 20, "log(N(s))");
    Style(obj, FL_WHITE, FL_MCOL, 12);
    fl_set_object_lalign(obj, FL_ALIGN_LEFT | FL_ALIGN_INSIDE);

    obj = fl_add_text(FL_NORMAL_TEXT, 250, 395, 70, 20, "log(1/s)");
    Style(obj, FL_WHITE, FL_MCOL, 12);
    fl_set_object_lalign(obj, FL_ALIGN_LEFT | FL_ALIGN_INSIDE);

    fl_end_form();
    fdui->graphform->fdui = fdui;
    return fdui;
}

void StartForms(int *argc, char **argv)
{
    fl_initialize(argc, argv, "Talvor", nullptr, 0);
    optionsform = create_form_optionsform();
    graphform = create_form_graphform();
    fl_deactivate_object(graphform->slope);
    UpdateOptionForm();
}

void ShowForm(FL_FORM *form)
{
    if (form->visible)
        fl_raise_form(form);
    else
        fl_show_form(form, FL_PLACE_CENTER, FL_FULLBORDER, "");
}

const char *AskFileName(const char *prompt)
{
    return fl_show_fselector(prompt, "", "", "");
}

void UpdateOptionForm(void)
{
    if (!optionsformvisible)
        return;
    char text[64];
    std::snprintf(text, sizeof text, "%d", options.noffsets);
    fl_set_input(optionsform->offsets, text);
    std::snprintf(text, sizeof text, "%d", options.boxend);
    fl_set_input(optionsform->boxend, text);
    if (options.boxstart >= 0)
        std::snprintf(text, sizeof text, "%d", options.boxstart);
    else
        std::snprintf(text, sizeof text, "Auto");
    fl_set_input(optionsform->boxstart, text);
    std::snprintf(text, sizeof text, "%g", static_cast<double>(options.boxfactor));
    fl_set_input(optionsform->factor, text);
}

void HandleFormObject(FL_OBJECT *obj)
{
    if (obj == nullptr)
        return;
    if (graphformvisible && obj == graphform->hide) {
        fl_hide_form(graphform->graphform);
        graphformvisible = 0;
    }
    if (!optionsformvisible)
        return;
    if (obj == optionsform->hide) {
        fl_hide_form(optionsform->optionsform);
        optionsformvisible = 0;
    } else if (obj == optionsform->offsets) {
        options.noffsets = std::atoi(fl_get_input(obj));
        if (options.noffsets < 1)
            options.noffsets = 1;
        UpdateOptionForm();
    } else if (obj == optionsform->boxstart) {
        const int v = std::atoi(fl_get_input(obj));
        options.boxstart = v > 1 ? v : -1;
        UpdateOptionForm();
    } else if (obj == optionsform->boxend) {
        // Here the fallback is 2, unlike the command line's 1.
        const int v = std::atoi(fl_get_input(obj));
        options.boxend = v > 0 ? v : 2;
        UpdateOptionForm();
    } else if (obj == optionsform->factor) {
        float f = static_cast<float>(std::atof(fl_get_input(obj)));
        if (!(f > 1.0) && !std::isnan(f))
            f = 1.1f;
        options.boxfactor = f;
        UpdateOptionForm();
    }
}

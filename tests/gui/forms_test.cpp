// The options and graph forms built for real on an X server (run under
// xvfb-run): their layout, the read-back rules of the option inputs, and the
// graph's points, fitted line and slope text.
#include <gtest/gtest.h>

#include <forms.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "appforms.h"
#include "boxcount.h"
#include "estimate.h"
#include "platform.h"
#include "settings.h"
#include "../app/counting_fixture.h"

// The window-side services the forms do not provide themselves.
void GetScreenSize(int *width, int *height)
{
    *width = 1280;
    *height = 1024;
}

void CleanExit(void)
{
    std::exit(0);
}

namespace {

class FormsEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        static int argc = 1;
        static char arg0[] = "forms_test";
        static char *argv[] = {arg0, nullptr};
        // No display is a failure, not a skip: this test is the proof that
        // the forms work.
        ASSERT_NE(std::getenv("DISPLAY"), nullptr) << "run under xvfb-run";
        SetDefaultOptions();
        StartForms(&argc, argv);
        ASSERT_NE(optionsform, nullptr);
        ASSERT_NE(graphform, nullptr);
    }
};

const ::testing::Environment *const env = ::testing::AddGlobalTestEnvironment(new FormsEnvironment);

struct Expected {
    int objclass;
    int type;
    int x, y, w, h;
    const char *label;
    long col1, col2; // -1: not checked
    int lsize;       // -1: not checked
};

void ExpectObject(FL_OBJECT *o, const Expected &e)
{
    ASSERT_NE(o, nullptr) << e.label;
    EXPECT_EQ(o->objclass, e.objclass) << e.label;
    EXPECT_EQ(fl_get_object_type(o), e.type) << e.label;
    FL_Coord x, y, w, h;
    fl_get_object_geometry(o, &x, &y, &w, &h);
    EXPECT_EQ(x, e.x) << e.label;
    EXPECT_EQ(y, e.y) << e.label;
    EXPECT_EQ(w, e.w) << e.label;
    EXPECT_EQ(h, e.h) << e.label;
    EXPECT_STREQ(fl_get_object_label(o), e.label);
    FL_COLOR c1, c2;
    fl_get_object_color(o, &c1, &c2);
    if (e.col1 >= 0) {
        EXPECT_EQ(static_cast<long>(c1), e.col1) << e.label;
        EXPECT_EQ(static_cast<long>(c2), e.col2) << e.label;
    }
    if (e.lsize >= 0) {
        EXPECT_EQ(fl_get_object_lsize(o), e.lsize) << e.label;
    }
}

// The objects the form's builder added, in creation order. fl_bgn_form puts
// a box of the form's own box type (here FL_NO_BOX) first; it is checked
// and left out.
std::vector<FL_OBJECT *> Objects(FL_FORM *form)
{
    std::vector<FL_OBJECT *> v;
    for (FL_OBJECT *o = form->first; o; o = o->next)
        v.push_back(o);
    EXPECT_FALSE(v.empty());
    if (!v.empty()) {
        EXPECT_EQ(v[0]->objclass, FL_BOX);
        EXPECT_EQ(fl_get_object_boxtype(v[0]), FL_NO_BOX);
        v.erase(v.begin());
    }
    return v;
}

std::vector<RESULT> storage;

void SetResults(const std::vector<std::pair<int, int>> &records)
{
    storage.clear();
    for (auto [size, count] : records)
        storage.push_back(RESULT{size, count, 0});
    results = storage.data();
    nresults = static_cast<int>(storage.size());
}

} // namespace

TEST(OptionsForm, LayoutLabelsColoursAndSizes)
{
    const auto objs = Objects(optionsform->optionsform);
    ASSERT_EQ(objs.size(), 7u);
    EXPECT_EQ(optionsform->optionsform->w, 331);
    EXPECT_EQ(optionsform->optionsform->h, 211);
    EXPECT_EQ(optionsform->optionsform->fdui, optionsform);
    ExpectObject(objs[0], {FL_BOX, FL_UP_BOX, 0, 0, 331, 211, "", FL_WHITE, FL_COL1, -1});
    ExpectObject(objs[1], {FL_BUTTON, FL_NORMAL_BUTTON, 240, 160, 60, 30, "Hide", FL_WHITE, FL_COL1, 12});
    ExpectObject(objs[2], {FL_TEXT, FL_NORMAL_TEXT, 20, 10, 150, 20, "Options", FL_WHITE, FL_MCOL, 14});
    EXPECT_EQ(fl_get_object_lalign(objs[2]), 8196);
    ExpectObject(objs[3], {FL_INPUT, FL_NORMAL_INPUT, 170, 40, 50, 30, "Number of offset samples", FL_WHITE, FL_WHITE, 12});
    ExpectObject(objs[4], {FL_INPUT, FL_NORMAL_INPUT, 170, 80, 50, 30, "Box size range", FL_WHITE, FL_WHITE, 12});
    ExpectObject(objs[5], {FL_INPUT, FL_NORMAL_INPUT, 250, 80, 50, 30, "to", FL_WHITE, FL_WHITE, 12});
    ExpectObject(objs[6], {FL_INPUT, FL_NORMAL_INPUT, 170, 120, 50, 30, "Box reduction factor", FL_WHITE, FL_WHITE, 12});
    EXPECT_EQ(optionsform->hide, objs[1]);
    EXPECT_EQ(optionsform->offsets, objs[3]);
    EXPECT_EQ(optionsform->boxstart, objs[4]);
    EXPECT_EQ(optionsform->boxend, objs[5]);
    EXPECT_EQ(optionsform->factor, objs[6]);
    for (FL_OBJECT *o : {objs[0], objs[1]}) {
        unsigned resize = 99;
        fl_get_object_resize(o, &resize);
        EXPECT_EQ(resize, static_cast<unsigned>(FL_RESIZE_NONE));
    }
}

TEST(GraphForm, LayoutLabelsColoursAndSizes)
{
    const auto objs = Objects(graphform->graphform);
    ASSERT_EQ(objs.size(), 6u);
    EXPECT_EQ(graphform->graphform->w, 421);
    EXPECT_EQ(graphform->graphform->h, 461);
    ExpectObject(objs[0], {FL_BOX, FL_UP_BOX, 0, 0, 421, 461, "", FL_WHITE, FL_COL1, -1});
    ExpectObject(objs[1], {FL_XYPLOT, FL_POINTS_XYPLOT, 20, 30, 380, 370, "", FL_WHITE, FL_BLACK, 10});
    ExpectObject(objs[2], {FL_BUTTON, FL_NORMAL_BUTTON, 340, 415, 60, 30, "Hide", FL_WHITE, FL_COL1, 12});
    ExpectObject(objs[3], {FL_INPUT, FL_NORMAL_INPUT, 130, 410, 110, 30, "Slope estimate", -1, -1, 12});
    EXPECT_EQ(fl_get_object_boxtype(objs[3]), FL_NO_BOX);
    EXPECT_FALSE(fl_object_is_active(objs[3])) << "display only";
    ExpectObject(objs[4], {FL_TEXT, FL_NORMAL_TEXT, 5, 10, 100, 20, "log(N(s))", FL_WHITE, FL_MCOL, 12});
    ExpectObject(objs[5], {FL_TEXT, FL_NORMAL_TEXT, 250, 395, 70, 20, "log(1/s)", FL_WHITE, FL_MCOL, 12});
    EXPECT_EQ(fl_get_object_lalign(objs[4]), 8196);
    EXPECT_EQ(fl_get_object_lalign(objs[5]), 8196);
    EXPECT_EQ(graphform->plot, objs[1]);
    EXPECT_EQ(graphform->hide, objs[2]);
    EXPECT_EQ(graphform->slope, objs[3]);
}

TEST(OptionsForm, FilledOnlyWhileShown)
{
    SetDefaultOptions();
    optionsformvisible = 0;
    fl_set_input(optionsform->offsets, "untouched");
    UpdateOptionForm();
    EXPECT_STREQ(fl_get_input(optionsform->offsets), "untouched");
    ShowForm(optionsform->optionsform);
    optionsformvisible = 1;
    UpdateOptionForm();
    EXPECT_STREQ(fl_get_input(optionsform->offsets), "10");
    EXPECT_STREQ(fl_get_input(optionsform->boxstart), "Auto");
    EXPECT_STREQ(fl_get_input(optionsform->boxend), "6");
    EXPECT_STREQ(fl_get_input(optionsform->factor), "1.2");
    options.boxstart = 0;
    UpdateOptionForm();
    EXPECT_STREQ(fl_get_input(optionsform->boxstart), "0");
}

TEST(OptionsForm, InputsAreReadBackWithTheirCorrections)
{
    struct Case {
        FL_OBJECT *FD_optionsform::*field;
        const char *typed;
        const char *shown;
    };
    const Case cases[] = {
        {&FD_optionsform::offsets, "0", "1"},
        {&FD_optionsform::offsets, "-4", "1"},
        {&FD_optionsform::offsets, "7 junk", "7"},
        {&FD_optionsform::boxstart, "1", "Auto"},
        {&FD_optionsform::boxstart, "2", "2"},
        {&FD_optionsform::boxstart, "words", "Auto"},
        {&FD_optionsform::boxend, "0", "2"},
        {&FD_optionsform::boxend, "-3", "2"},
        {&FD_optionsform::boxend, "1", "1"},
        {&FD_optionsform::factor, "0.5", "1.1"},
        {&FD_optionsform::factor, "1", "1.1"},
        {&FD_optionsform::factor, "none", "1.1"},
        {&FD_optionsform::factor, "1.35", "1.35"},
        {&FD_optionsform::factor, "nan", "nan"},
    };
    ShowForm(optionsform->optionsform);
    optionsformvisible = 1;
    for (const auto &c : cases) {
        SetDefaultOptions();
        FL_OBJECT *obj = optionsform->*c.field;
        fl_set_input(obj, c.typed);
        HandleFormObject(obj);
        EXPECT_STREQ(fl_get_input(obj), c.shown) << "typed " << c.typed;
    }
    SetDefaultOptions();
    fl_set_input(optionsform->boxend, "0");
    HandleFormObject(optionsform->boxend);
    EXPECT_EQ(options.boxend, 2);
    fl_set_input(optionsform->factor, "0.5");
    HandleFormObject(optionsform->factor);
    EXPECT_EQ(options.boxfactor, 1.1f);
    fl_set_input(optionsform->boxstart, "1");
    HandleFormObject(optionsform->boxstart);
    EXPECT_EQ(options.boxstart, -1);
}

TEST(Forms, HideButtonsHideTheirForms)
{
    ShowForm(optionsform->optionsform);
    optionsformvisible = 1;
    ShowForm(graphform->graphform);
    graphformvisible = 1;
    HandleFormObject(graphform->hide);
    EXPECT_EQ(graphformvisible, 0);
    EXPECT_FALSE(fl_form_is_visible(graphform->graphform));
    EXPECT_EQ(optionsformvisible, 1);
    HandleFormObject(optionsform->hide);
    EXPECT_EQ(optionsformvisible, 0);
    EXPECT_FALSE(fl_form_is_visible(optionsform->optionsform));
}

TEST(GraphForm, LeftAloneWhenHiddenOrWithTooFewRecords)
{
    fl_set_input(graphform->slope, "as before");
    graphformvisible = 0;
    SetResults({{100, 5}, {66, 9}, {44, 20}, {29, 44}});
    UpdateGraphForm();
    EXPECT_STREQ(fl_get_input(graphform->slope), "as before");
    ShowForm(graphform->graphform);
    graphformvisible = 1;
    SetResults({{100, 5}, {66, 9}, {44, 20}});
    UpdateGraphForm();
    EXPECT_STREQ(fl_get_input(graphform->slope), "as before");
}

TEST(GraphForm, TwoSizesArePlottedAndFittedOneSizeIsNot)
{
    ShowForm(graphform->graphform);
    graphformvisible = 1;
    // 4 records, 2 sizes: plotted and fitted, though the estimate would be 0.
    SetResults({{100, 5}, {50, 20}, {100, 4}, {50, 21}});
    UpdateGraphForm();
    FL_OBJECT *plot = graphform->plot;
    EXPECT_EQ(fl_get_xyplot_numdata(plot, 0), 2);
    EXPECT_EQ(fl_get_xyplot_numdata(plot, 1), 2) << "the fitted line";
    // Slope through (ln 1/100, ln 4) and (ln 1/50, ln 20): ln 5 / ln 2.
    char want[32];
    std::snprintf(want, sizeof want, "%6.3f", std::log(5.0) / std::log(2.0));
    EXPECT_STREQ(fl_get_input(graphform->slope), want);
    // The line spans the plot's whole x range.
    float lx[8], ly[8], xmin, xmax;
    int n = 0;
    fl_get_xyplot_overlay_data(plot, 1, lx, ly, &n);
    fl_get_xyplot_xbounds(plot, &xmin, &xmax);
    ASSERT_EQ(n, 2);
    EXPECT_EQ(lx[0], xmin);
    EXPECT_EQ(lx[1], xmax);
    EXPECT_LT(xmin, static_cast<float>(std::log(1.0 / 100)) + 1e-6f);

    SetResults({{64, 5}, {64, 4}, {64, 6}, {64, 7}});
    UpdateGraphForm();
    EXPECT_EQ(fl_get_xyplot_numdata(plot, 0), 1);
    EXPECT_STREQ(fl_get_input(graphform->slope), " 0.000");
}

TEST(GraphForm, AfterAFinishedCountTheSlopeIsTheEstimate)
{
    SetDefaultOptions();
    counting::LoadMask(counting::RandomMask(200, 160, 0.05, 21));
    options.noffsets = 3;
    BoxCount(0);
    while (!BoxCount(1)) {
    }
    ShowForm(graphform->graphform);
    graphformvisible = 1;
    UpdateGraphForm();
    char want[32];
    std::snprintf(want, sizeof want, "%6.3f", CalcSlope());
    EXPECT_STREQ(fl_get_input(graphform->slope), want);
    std::vector<float> X, Y;
    BuildLogLogPoints(&X, &Y);
    EXPECT_EQ(fl_get_xyplot_numdata(graphform->plot, 0), static_cast<int>(X.size()));
    EXPECT_EQ(static_cast<int>(X.size()), nresults / 3) << "one point per distinct size";
}

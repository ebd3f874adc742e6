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
#include "settings.h"
#include "../app/counting_fixture.h"

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

// Checks one object: class, type, geometry, label, colours (unless -1),
// label size (unless -1).
void ExpectObject(FL_OBJECT *o, int objclass, int type, std::vector<int> geometry, const char *label, long col1,
                  long col2, int lsize)
{
    ASSERT_NE(o, nullptr) << label;
    FL_Coord x, y, w, h;
    fl_get_object_geometry(o, &x, &y, &w, &h);
    FL_COLOR c1, c2;
    fl_get_object_color(o, &c1, &c2);
    EXPECT_EQ((std::vector<int>{o->objclass, fl_get_object_type(o), x, y, w, h}),
              (std::vector<int>{objclass, type, geometry[0], geometry[1], geometry[2], geometry[3]}))
        << label;
    EXPECT_STREQ(fl_get_object_label(o), label);
    if (col1 >= 0) {
        EXPECT_EQ(static_cast<long>(c1) * 1000 + static_cast<long>(c2), col1 * 1000 + col2) << label;
    }
    if (lsize >= 0) {
        EXPECT_EQ(fl_get_object_lsize(o), lsize) << label;
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
    EXPECT_TRUE(!v.empty() && v[0]->objclass == FL_BOX && fl_get_object_boxtype(v[0]) == FL_NO_BOX);
    if (!v.empty())
        v.erase(v.begin());
    return v;
}


} // namespace

TEST(Forms, LayoutLabelsColoursAndSizes)
{
    auto o = Objects(optionsform->optionsform);
    ASSERT_EQ(o.size(), 7u);
    EXPECT_EQ(optionsform->optionsform->w * 1000 + optionsform->optionsform->h, 331211);
    EXPECT_EQ(optionsform->optionsform->fdui, optionsform);
    ExpectObject(o[0], FL_BOX, FL_UP_BOX, {0, 0, 331, 211}, "", FL_WHITE, FL_COL1, -1);
    ExpectObject(o[1], FL_BUTTON, FL_NORMAL_BUTTON, {240, 160, 60, 30}, "Hide", FL_WHITE, FL_COL1, 12);
    ExpectObject(o[2], FL_TEXT, FL_NORMAL_TEXT, {20, 10, 150, 20}, "Options", FL_WHITE, FL_MCOL, 14);
    ExpectObject(o[3], FL_INPUT, FL_NORMAL_INPUT, {170, 40, 50, 30}, "Number of offset samples", FL_WHITE, FL_WHITE, 12);
    ExpectObject(o[4], FL_INPUT, FL_NORMAL_INPUT, {170, 80, 50, 30}, "Box size range", FL_WHITE, FL_WHITE, 12);
    ExpectObject(o[5], FL_INPUT, FL_NORMAL_INPUT, {250, 80, 50, 30}, "to", FL_WHITE, FL_WHITE, 12);
    ExpectObject(o[6], FL_INPUT, FL_NORMAL_INPUT, {170, 120, 50, 30}, "Box reduction factor", FL_WHITE, FL_WHITE, 12);
    EXPECT_EQ(fl_get_object_lalign(o[2]), 8196);
    EXPECT_EQ((std::vector<FL_OBJECT *>{optionsform->hide, optionsform->offsets, optionsform->boxstart,
                                        optionsform->boxend, optionsform->factor}),
              (std::vector<FL_OBJECT *>{o[1], o[3], o[4], o[5], o[6]}));
    for (FL_OBJECT *fixed : {o[0], o[1]}) {
        unsigned resize = 99;
        fl_get_object_resize(fixed, &resize);
        EXPECT_EQ(resize, static_cast<unsigned>(FL_RESIZE_NONE));
    }

    auto g = Objects(graphform->graphform);
    ASSERT_EQ(g.size(), 6u);
    EXPECT_EQ(graphform->graphform->w * 1000 + graphform->graphform->h, 421461);
    ExpectObject(g[0], FL_BOX, FL_UP_BOX, {0, 0, 421, 461}, "", FL_WHITE, FL_COL1, -1);
    ExpectObject(g[1], FL_XYPLOT, FL_POINTS_XYPLOT, {20, 30, 380, 370}, "", FL_WHITE, FL_BLACK, 10);
    ExpectObject(g[2], FL_BUTTON, FL_NORMAL_BUTTON, {340, 415, 60, 30}, "Hide", FL_WHITE, FL_COL1, 12);
    ExpectObject(g[3], FL_INPUT, FL_NORMAL_INPUT, {130, 410, 110, 30}, "Slope estimate", -1, -1, 12);
    ExpectObject(g[4], FL_TEXT, FL_NORMAL_TEXT, {5, 10, 100, 20}, "log(N(s))", FL_WHITE, FL_MCOL, 12);
    ExpectObject(g[5], FL_TEXT, FL_NORMAL_TEXT, {250, 395, 70, 20}, "log(1/s)", FL_WHITE, FL_MCOL, 12);
    EXPECT_EQ(fl_get_object_boxtype(g[3]), FL_NO_BOX);
    EXPECT_FALSE(fl_object_is_active(g[3])) << "display only";
    EXPECT_EQ(fl_get_object_lalign(g[4]) * 10000 + fl_get_object_lalign(g[5]), 8196 * 10000 + 8196);
    EXPECT_EQ((std::vector<FL_OBJECT *>{graphform->plot, graphform->hide, graphform->slope}),
              (std::vector<FL_OBJECT *>{g[1], g[2], g[3]}));
}

TEST(OptionsForm, FilledWhileShownAndReadBackWithCorrections)
{
    SetDefaultOptions();
    optionsformvisible = 0;
    fl_set_input(optionsform->offsets, "untouched");
    UpdateOptionForm();
    EXPECT_STREQ(fl_get_input(optionsform->offsets), "untouched");
    ShowForm(optionsform->optionsform);
    optionsformvisible = 1;
    UpdateOptionForm();
    std::string shown;
    for (FL_OBJECT *o : {optionsform->offsets, optionsform->boxstart, optionsform->boxend, optionsform->factor})
        shown += std::string(fl_get_input(o)) + " ";
    EXPECT_EQ(shown, "10 Auto 6 1.2 ");
    struct Case {
        FL_OBJECT *FD_optionsform::*field;
        const char *typed, *shown;
    };
    const Case cases[] = {
        {&FD_optionsform::offsets, "0", "1"},       {&FD_optionsform::offsets, "7 junk", "7"},
        {&FD_optionsform::boxstart, "1", "Auto"},   {&FD_optionsform::boxstart, "2", "2"},
        {&FD_optionsform::boxstart, "words", "Auto"}, {&FD_optionsform::boxend, "0", "2"},
        {&FD_optionsform::boxend, "-3", "2"},       {&FD_optionsform::boxend, "1", "1"},
        {&FD_optionsform::factor, "0.5", "1.1"},    {&FD_optionsform::factor, "none", "1.1"},
        {&FD_optionsform::factor, "1.35", "1.35"},  {&FD_optionsform::factor, "nan", "nan"},
    };
    for (const auto &c : cases) {
        SetDefaultOptions();
        FL_OBJECT *obj = optionsform->*c.field;
        fl_set_input(obj, c.typed);
        HandleFormObject(obj);
        EXPECT_STREQ(fl_get_input(obj), c.shown) << "typed " << c.typed;
    }
    // The settings themselves (the last box size falls back to 2 here).
    SetDefaultOptions();
    fl_set_input(optionsform->boxend, "0");
    HandleFormObject(optionsform->boxend);
    fl_set_input(optionsform->factor, "0.5");
    HandleFormObject(optionsform->factor);
    EXPECT_EQ(options.boxend, 2);
    EXPECT_EQ(options.boxfactor, 1.1f);
    // Hide buttons hide only their own form.
    ShowForm(graphform->graphform);
    graphformvisible = 1;
    HandleFormObject(graphform->hide);
    EXPECT_FALSE(graphformvisible || fl_form_is_visible(graphform->graphform));
    EXPECT_EQ(optionsformvisible, 1);
    HandleFormObject(optionsform->hide);
    EXPECT_FALSE(optionsformvisible || fl_form_is_visible(optionsform->optionsform));
}

TEST(GraphForm, PointsFittedLineAndSlopeText)
{
    // Hidden, or fewer than 4 records: left as it was.
    fl_set_input(graphform->slope, "as before");
    graphformvisible = 0;
    counting::SetResults({{100, 5}, {66, 9}, {44, 20}, {29, 44}});
    UpdateGraphForm();
    ShowForm(graphform->graphform);
    graphformvisible = 1;
    counting::SetResults({{100, 5}, {66, 9}, {44, 20}});
    UpdateGraphForm();
    EXPECT_STREQ(fl_get_input(graphform->slope), "as before");
    // 4 records, 2 sizes: plotted and fitted, though the estimate would be
    // 0; the slope through (ln 1/100, ln 4) and (ln 1/50, ln 20) is ln 5 / ln 2.
    counting::SetResults({{100, 5}, {50, 20}, {100, 4}, {50, 21}});
    UpdateGraphForm();
    FL_OBJECT *plot = graphform->plot;
    EXPECT_EQ(fl_get_xyplot_numdata(plot, 0) * 10 + fl_get_xyplot_numdata(plot, 1), 22) << "points, then the line";
    char want[32];
    std::snprintf(want, sizeof want, "%6.3f", std::log(5.0) / std::log(2.0));
    EXPECT_STREQ(fl_get_input(graphform->slope), want);
    // The line spans the plot's whole x range, not just the points.
    float lx[8], ly[8], xmin, xmax;
    int n = 0;
    fl_get_xyplot_overlay_data(plot, 1, lx, ly, &n);
    fl_get_xyplot_xbounds(plot, &xmin, &xmax);
    EXPECT_EQ((std::vector<float>{static_cast<float>(n), lx[0], lx[1]}), (std::vector<float>{2, xmin, xmax}));
    // One size: one point, no fit, the field shows 0.
    counting::SetResults({{64, 5}, {64, 4}, {64, 6}, {64, 7}});
    UpdateGraphForm();
    EXPECT_EQ(fl_get_xyplot_numdata(plot, 0), 1);
    EXPECT_STREQ(fl_get_input(graphform->slope), " 0.000");
    // After a real count: one point per distinct size, the slope is the estimate.
    SetDefaultOptions();
    counting::LoadMask(counting::RandomMask(200, 160, 0.05, 21));
    options.noffsets = 3;
    BoxCount(0);
    while (!BoxCount(1)) {
    }
    graphformvisible = 1;
    UpdateGraphForm();
    std::snprintf(want, sizeof want, "%6.3f", CalcSlope());
    EXPECT_STREQ(fl_get_input(graphform->slope), want);
    EXPECT_EQ(fl_get_xyplot_numdata(graphform->plot, 0), nresults / 3);
}

// The log-log graph form: the points, the fitted line and the slope.
#include <forms.h>

#include <cstdio>
#include <vector>

#include "appforms.h"
#include "estimate.h"
#include "settings.h"

void UpdateGraphForm(void)
{
    if (!graphformvisible || nresults < 4)
        return;
    std::vector<float> X, Y;
    BuildLogLogPoints(&X, &Y);
    const int n = static_cast<int>(X.size());
    FL_OBJECT *plot = graphform->plot;

    fl_set_xyplot_symbolsize(plot, 2);
    fl_set_xyplot_xtics(plot, 5, 2);
    fl_set_xyplot_ytics(plot, 5, 2);
    fl_set_xyplot_linewidth(plot, 1, 0);
    fl_set_xyplot_data(plot, X.data(), Y.data(), n, "", "", "");

    float a, b, r;
    if (LinRegressf(X.data(), Y.data(), n, &a, &b, &r)) {
        fl_set_xyplot_overlay_type(plot, 1, FL_NORMAL_XYPLOT);
        // The line spans the plot's whole x range, not just the points.
        float xmin, xmax;
        fl_get_xyplot_xbounds(plot, &xmin, &xmax);
        float lx[2] = {xmin, xmax};
        float ly[2] = {a + b * xmin, a + b * xmax};
        fl_set_xyplot_linewidth(plot, 1, 1);
        fl_add_xyplot_overlay(plot, 1, lx, ly, 2, FL_RED);
    }

    char text[64];
    std::snprintf(text, sizeof text, "%6.3f", static_cast<double>(b));
    fl_set_input(graphform->slope, text);
    fl_redraw_form(graphform->graphform);
}

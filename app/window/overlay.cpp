#include "overlay.h"

#include <GL/gl.h>

#include <algorithm>

#include "settings.h"

namespace {

struct Clipped {
    float l, r, t, b;
};

Clipped ClipToRegion(const BOX &box)
{
    const float s = static_cast<float>(options.scale);
    return Clipped{static_cast<float>(std::max(box.left, options.left)) / s,
                   static_cast<float>(std::min(box.right, options.right)) / s,
                   static_cast<float>(std::min(box.top, options.top)) / s,
                   static_cast<float>(std::max(box.bottom, options.bottom)) / s};
}

} // namespace

void DisplayBoxes(void)
{
    if (options.quiet)
        return;

    glColor4f(0, 1, 0, 0.4f);
    for (int i = 0; i < nboxlist; i++) {
        if (!boxlist[i].filled)
            continue;
        const Clipped c = ClipToRegion(boxlist[i]);
        glBegin(GL_QUADS);
        glVertex2f(c.l, c.b);
        glVertex2f(c.l, c.t);
        glVertex2f(c.r, c.t);
        glVertex2f(c.r, c.b);
        glEnd();
    }

    // Outlines go over all fills, and only on boxes big enough to see.
    glColor3f(1, 0, 0);
    for (int i = 0; i < nboxlist; i++) {
        const BOX &box = boxlist[i];
        if (static_cast<long long>(box.right) - box.left <= 4LL * options.scale)
            continue;
        const Clipped c = ClipToRegion(box);
        glBegin(GL_LINE_STRIP);
        glVertex2f(c.l, c.b);
        glVertex2f(c.l, c.t);
        glVertex2f(c.r, c.t);
        glVertex2f(c.r, c.b);
        glVertex2f(c.l, c.b);
        glEnd();
    }
}

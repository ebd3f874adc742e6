#include "vectors.h"

#include <cmath>
#include <cstddef>

namespace {

const double kPi = 3.14159265358979323846;

/* Degrees per radian and radians per degree, with the digits this library
 * has always used (callers compare against values computed with them). */
const double kRadToDeg = 57.2957795;
const double kDegToRad = 0.0174532925;

/* Point where the segment a-b meets the plane, from the plane values sa, sb
 * of its ends (which differ in sign). */
XYZ PlaneCrossing(XYZ a, XYZ b, double sa, double sb)
{
    const double t = sa / (sa - sb);
    return MakeVector(a.x + t * (b.x - a.x), a.y + t * (b.y - a.y), a.z + t * (b.z - a.z));
}

} // namespace

XYZ MakeVector(double x, double y, double z)
{
    XYZ p;
    p.x = x;
    p.y = y;
    p.z = z;
    return p;
}

XYZ VectorAdd(XYZ p1, XYZ p2)
{
    return MakeVector(p1.x + p2.x, p1.y + p2.y, p1.z + p2.z);
}

XYZ VectorSub(XYZ p1, XYZ p2)
{
    return MakeVector(p2.x - p1.x, p2.y - p1.y, p2.z - p1.z);
}

XYZ VectorMul(XYZ p, double s)
{
    return MakeVector(p.x * s, p.y * s, p.z * s);
}

XYZ VectorInvert(XYZ p)
{
    return MakeVector(-p.x, -p.y, -p.z);
}

XYZ MidPoint(XYZ p1, XYZ p2)
{
    return MakeVector((p1.x + p2.x) / 2, (p1.y + p2.y) / 2, (p1.z + p2.z) / 2);
}

double DotProduct(XYZ p1, XYZ p2)
{
    return p1.x * p2.x + p1.y * p2.y + p1.z * p2.z;
}

XYZ CrossProduct(XYZ p1, XYZ p2)
{
    return MakeVector(p1.y * p2.z - p1.z * p2.y,
                      p1.z * p2.x - p1.x * p2.z,
                      p1.x * p2.y - p1.y * p2.x);
}

double Modulus(XYZ p)
{
    return std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
}

double VectorLength(XYZ p1, XYZ p2)
{
    return Modulus(VectorSub(p1, p2));
}

int VectorEqual(XYZ p1, XYZ p2)
{
    const double eps = 1e-6;
    if (std::fabs(p1.x - p2.x) <= eps && std::fabs(p1.y - p2.y) <= eps &&
        std::fabs(p1.z - p2.z) <= eps)
        return TRUE;
    return FALSE;
}

void Normalise(XYZ *p)
{
    const double len2 = p->x * p->x + p->y * p->y + p->z * p->z;
    if (len2 > 0) {
        const double len = std::sqrt(len2);
        p->x /= len;
        p->y /= len;
        p->z /= len;
    } else {
        /* Also catches NaN components: the comparison above is false. */
        *p = MakeVector(0, 0, 0);
    }
}

void SetVectorLength(XYZ *p, double len)
{
    Normalise(p);
    *p = VectorMul(*p, len);
}

XYZ CalcNormal(XYZ p1, XYZ p2, XYZ p3)
{
    XYZ n = CrossProduct(VectorSub(p1, p2), VectorSub(p1, p3));
    Normalise(&n);
    return n;
}

XYZ Centroid(const XYZ *p, int n)
{
    XYZ sum = MakeVector(0, 0, 0);
    for (int i = 0; i < n; i++)
        sum = VectorAdd(sum, p[i]);
    /* For n below 1 the sum stays 0 and the division gives 0 / n, as
     * documented; floating division by zero is well defined (IEEE 754). */
    const double dn = n;
    return MakeVector(sum.x / dn, sum.y / dn, sum.z / dn);
}

void SwapXYZ(XYZ *p1, XYZ *p2)
{
    const XYZ t = *p1;
    *p1 = *p2;
    *p2 = t;
}

XYZ VectorPerp(XYZ v)
{
    const double ax = std::fabs(v.x), ay = std::fabs(v.y), az = std::fabs(v.z);
    XYZ axis;
    if (ax <= ay && ax <= az)
        axis = MakeVector(1, 0, 0);
    else if (ay <= az)
        axis = MakeVector(0, 1, 0);
    else
        axis = MakeVector(0, 0, 1);
    XYZ perp = CrossProduct(v, axis);
    Normalise(&perp);
    return perp;
}

double VectorAngle(XYZ p1, XYZ p2)
{
    const double m = Modulus(p1) * Modulus(p2);
    if (m <= 1e-5)
        return 0;
    const double c = DotProduct(p1, p2) / m;
    if (c <= -1)
        return kPi;
    if (c >= 1)
        return 0;
    return std::acos(c);
}

double Angle2D(double x1, double y1, double x2, double y2)
{
    double dtheta = std::atan2(y2, x2) - std::atan2(y1, x1);
    while (dtheta > kPi)
        dtheta -= 2 * kPi;
    while (dtheta < -kPi)
        dtheta += 2 * kPi;
    return dtheta;
}

/* Pseudo-angle after Fowler (Graphics Gems): the octant is chosen from the
 * signs of dx, dy and which of |dx|, |dy| is larger, and the ratio of the
 * smaller to the larger moves monotonically within it. */
double FowlerAngle(double dy, double dx)
{
    const double ax = std::fabs(dx);
    const double ay = std::fabs(dy);
    if (ay > ax) {
        if (dx < 0)
            return dy < 0 ? 6 - ax / ay : 2 + ax / ay;
        return dy < 0 ? 6 + ax / ay : 2 - ax / ay;
    }
    if (dx < 0)
        return dy < 0 ? 4 + ay / ax : 4 - ay / ax;
    if (dy < 0)
        return 8 - ay / ax;
    /* First octant: the direction (0, 0) lands here and counts as 0. */
    return dx == 0 ? 0 : ay / ax;
}

XYZ RotateX(XYZ p, double theta)
{
    const double c = std::cos(theta), s = std::sin(theta);
    return MakeVector(p.x, c * p.y + s * p.z, c * p.z - s * p.y);
}

XYZ RotateY(XYZ p, double theta)
{
    const double c = std::cos(theta), s = std::sin(theta);
    return MakeVector(c * p.x - s * p.z, p.y, s * p.x + c * p.z);
}

XYZ RotateZ(XYZ p, double theta)
{
    const double c = std::cos(theta), s = std::sin(theta);
    return MakeVector(c * p.x + s * p.y, c * p.y - s * p.x, p.z);
}

XYZ Vector2DRotate(XYZ v, double theta)
{
    const double c = std::cos(theta), s = std::sin(theta);
    return MakeVector(c * v.x + s * v.y, c * v.y - s * v.x, v.z);
}

/* Rodrigues' rotation formula, p' = p cos a + (k x p) sin a + k (k . p)
 * (1 - cos a) about the unit axis k, with a = -theta so that the sense
 * matches RotateX/Y/Z. */
XYZ ArbitraryRotate(XYZ p, double theta, XYZ r)
{
    XYZ k = r;
    Normalise(&k);
    if (k.x == 0 && k.y == 0 && k.z == 0)
        return p;
    const double c = std::cos(theta), s = -std::sin(theta);
    const XYZ kxp = CrossProduct(k, p);
    const double kp = DotProduct(k, p) * (1 - c);
    return MakeVector(p.x * c + kxp.x * s + k.x * kp,
                      p.y * c + kxp.y * s + k.y * kp,
                      p.z * c + kxp.z * s + k.z * kp);
}

XYZ ArbitraryRotate2(XYZ p, double theta, XYZ p1, XYZ p2)
{
    const XYZ local = VectorSub(p1, p);
    return VectorAdd(ArbitraryRotate(local, theta, VectorSub(p1, p2)), p1);
}

void XYZ2Polar(XYZ p, double *r, double *theta, double *phi)
{
    *r = Modulus(p);
    if (*r < 1e-6) {
        *theta = 0;
        *phi = 90;
        return;
    }
    *theta = std::asin(p.z / *r);
    const double t = *r * std::cos(*theta);
    *phi = std::fabs(t) < 1e-6 ? 0 : std::asin(p.y / t);
    *theta *= kRadToDeg;
    *phi *= kRadToDeg;
    *phi += 90;
}

void polar2xyz(double r, double theta, double phi, double *x, double *y, double *z)
{
    const double t = theta * kDegToRad;
    const double q = (phi - 90) * kDegToRad;
    *x = r * std::cos(t) * std::cos(q);
    *y = r * std::cos(t) * std::sin(q);
    *z = r * std::sin(t);
}

/* Segment intersection in the parametric form of Bourke, "Intersection point
 * of two lines (2 dimensions)": ua and ub are the positions along each
 * segment. */
int LineIntersect(double x1, double y1, double x2, double y2,
                  double x3, double y3, double x4, double y4,
                  double *x, double *y)
{
    const double eps = 1e-5;
    const double denom = (y4 - y3) * (x2 - x1) - (x4 - x3) * (y2 - y1);
    const double na = (x4 - x3) * (y1 - y3) - (y4 - y3) * (x1 - x3);
    const double nb = (x2 - x1) * (y1 - y3) - (y2 - y1) * (x1 - x3);

    if (std::fabs(na) < eps && std::fabs(nb) < eps && std::fabs(denom) < eps) {
        *x = (x1 + x2) / 2;
        *y = (y1 + y2) / 2;
        return TRUE;
    }
    if (std::fabs(denom) < eps) {
        *x = 0;
        *y = 0;
        return FALSE;
    }
    const double ua = na / denom;
    const double ub = nb / denom;
    if (ua < 0 || ua > 1 || ub < 0 || ub > 1) {
        *x = 0;
        *y = 0;
        return FALSE;
    }
    *x = x1 + ua * (x2 - x1);
    *y = y1 + ua * (y2 - y1);
    return TRUE;
}

/* The shortest segment between two lines: pa - pb must be perpendicular to
 * both directions, which gives two linear equations in mua and mub. */
int LineLineIntersect(XYZ p1, XYZ p2, XYZ p3, XYZ p4, XYZ *pa, XYZ *pb,
                      double *mua, double *mub)
{
    const double eps = 1e-5;
    const XYZ p43 = VectorSub(p3, p4);
    if (std::fabs(p43.x) < eps && std::fabs(p43.y) < eps && std::fabs(p43.z) < eps)
        return FALSE;
    const XYZ p21 = VectorSub(p1, p2);
    if (std::fabs(p21.x) < eps && std::fabs(p21.y) < eps && std::fabs(p21.z) < eps)
        return FALSE;
    const XYZ p13 = VectorSub(p3, p1);

    const double d1343 = DotProduct(p13, p43);
    const double d4321 = DotProduct(p43, p21);
    const double d1321 = DotProduct(p13, p21);
    const double d4343 = DotProduct(p43, p43);
    const double d2121 = DotProduct(p21, p21);
    const double denom = d2121 * d4343 - d4321 * d4321;
    if (std::fabs(denom) < eps)
        return FALSE;
    const double numer = d1343 * d4321 - d1321 * d4343;

    *mua = numer / denom;
    *mub = (d1343 + d4321 * (*mua)) / d4343;
    *pa = VectorAdd(p1, VectorMul(p21, *mua));
    *pb = VectorAdd(p3, VectorMul(p43, *mub));
    return TRUE;
}

double PointLine2D(XYZ p, XYZ p1, XYZ p2, XYZ *closest, double *u)
{
    const double dx = p2.x - p1.x, dy = p2.y - p1.y;
    const double len2 = dx * dx + dy * dy;
    if (len2 < 1e-5) {
        *u = 0;
        *closest = p1;
    } else {
        *u = ((p.x - p1.x) * dx + (p.y - p1.y) * dy) / len2;
        *closest = MakeVector(p1.x + *u * dx, p1.y + *u * dy, p1.z + *u * (p2.z - p1.z));
    }
    const double ex = p.x - closest->x, ey = p.y - closest->y;
    return std::sqrt(ex * ex + ey * ey);
}

double PointLine3D(XYZ p, XYZ p1, XYZ p2, XYZ *closest, double *u)
{
    const XYZ d = VectorSub(p1, p2);
    const double len2 = DotProduct(d, d);
    if (len2 < 1e-5) {
        *u = 0;
        *closest = p1;
    } else {
        *u = DotProduct(VectorSub(p1, p), d) / len2;
        *closest = VectorAdd(p1, VectorMul(d, *u));
    }
    return VectorLength(p, *closest);
}

int WhichSide(XYZ p, XYZ p1, XYZ p2)
{
    const double d = (p.y - p1.y) * (p2.x - p1.x) - (p2.y - p1.y) * (p.x - p1.x);
    if (d > 0)
        return -1;
    if (d < 0)
        return 1;
    return 0;
}

int ClockWise(const XYZ *p, int n)
{
    if (n < 3)
        return 0;
    double area = 0;
    for (int i = 0; i < n; i++) {
        const int j = i + 1 == n ? 0 : i + 1;
        area += p[i].x * p[j].y - p[j].x * p[i].y;
    }
    if (area < 0)
        return 1;
    if (area > 0)
        return -1;
    return 0;
}

int ConvexPolygon(const XYZ *p, int n)
{
    if (n < 3)
        return 0;
    int flag = 0;
    for (int i = 0; i < n; i++) {
        /* Cyclic successors computed without forming i + 2, which could
         * overflow for n near INT_MAX. */
        const int j = i + 1 == n ? 0 : i + 1;
        const int k = j + 1 == n ? 0 : j + 1;
        const double z = (p[j].x - p[i].x) * (p[k].y - p[j].y) -
                         (p[j].y - p[i].y) * (p[k].x - p[j].x);
        if (z < 0)
            flag |= 1;
        else if (z > 0)
            flag |= 2;
        if (flag == 3)
            return -1;
    }
    return flag != 0 ? 1 : 0;
}

/* Crossing-number test (Shimrat 1962, in the half-open form of Franklin's
 * pnpoly): a ray from p towards +x toggles the state at every edge whose ends
 * are on different sides of the line y = p.y and which crosses it right of p. */
int PointInPolygon(const XYZ *polygon, int n, XYZ p)
{
    if (n < 3)
        return FALSE;
    int inside = FALSE;
    for (int i = 0, j = n - 1; i < n; j = i++) {
        const XYZ a = polygon[i], b = polygon[j];
        if ((a.y > p.y) != (b.y > p.y) &&
            p.x < a.x + (p.y - a.y) * (b.x - a.x) / (b.y - a.y))
            inside = !inside;
    }
    return inside;
}

int PointInBox(XYZ p, XYZ min, XYZ max)
{
    if (p.x > min.x && p.x < max.x && p.y > min.y && p.y < max.y &&
        p.z > min.z && p.z < max.z)
        return TRUE;
    return FALSE;
}

int LinePlane(XYZ p1, XYZ p2, XYZ n, double d, double *mu, XYZ *p)
{
    const double denom = DotProduct(VectorSub(p2, p1), n);
    if (std::fabs(denom) < 1e-5)
        return FALSE;
    *mu = (DotProduct(n, p1) + d) / denom;
    *p = VectorAdd(p1, VectorMul(VectorSub(p1, p2), *mu));
    return TRUE;
}

int LineSegmentPlane(XYZ p1, XYZ p2, XYZ n, double d, XYZ *p)
{
    double mu = 0;
    if (!LinePlane(p1, p2, n, d, &mu, p))
        return FALSE;
    if (mu < 0 || mu > 1)
        return FALSE;
    return TRUE;
}

int RaySphere(XYZ p1, XYZ p2, XYZ centre, double r, double *mu1, double *mu2)
{
    const XYZ dp = VectorSub(p1, p2);
    const double a = DotProduct(dp, dp);
    const double b = 2 * (dp.x * (p1.x - centre.x) + dp.y * (p1.y - centre.y) +
                          dp.z * (p1.z - centre.z));
    const double c = DotProduct(centre, centre) + DotProduct(p1, p1) -
                     2 * DotProduct(centre, p1) - r * r;
    if (std::fabs(a) < 1e-5) {
        *mu1 = 0;
        *mu2 = 0;
        return FALSE;
    }
    const double bb4ac = b * b - 4 * a * c;
    if (bb4ac < 0)
        return FALSE;
    /* a is positive here, so the minus root is the smaller one. */
    const double root = std::sqrt(bb4ac);
    *mu1 = (-b - root) / (2 * a);
    *mu2 = (-b + root) / (2 * a);
    return TRUE;
}

void PlaneParam(Facet facet, double *a, double *b, double *c, double *d)
{
    const XYZ p1 = facet.p[0], p2 = facet.p[1], p3 = facet.p[2];
    *a = p1.y * (p2.z - p3.z) + p2.y * (p3.z - p1.z) + p3.y * (p1.z - p2.z);
    *b = p1.z * (p2.x - p3.x) + p2.z * (p3.x - p1.x) + p3.z * (p1.x - p2.x);
    *c = p1.x * (p2.y - p3.y) + p2.x * (p3.y - p1.y) + p3.x * (p1.y - p2.y);
    *d = -(p1.x * (p2.y * p3.z - p3.y * p2.z) + p2.x * (p3.y * p1.z - p1.y * p3.z) +
           p3.x * (p1.y * p2.z - p2.y * p1.z));
}

double PlanePoint(double x, double y, XYZ p1, XYZ p2, XYZ p3)
{
    Facet f;
    f.p[0] = p1;
    f.p[1] = p2;
    f.p[2] = p3;
    double a, b, c, d;
    PlaneParam(f, &a, &b, &c, &d);
    if (std::fabs(c) <= 1e-6)
        return 0;
    return -(a * x + b * y + d) / c;
}

/* One step of Sutherland-Hodgman polygon clipping against a single plane. */
int ClipFacet(XYZ *p, XYZ n, double d)
{
    const XYZ in[3] = {p[0], p[1], p[2]};
    double s[3];
    for (int i = 0; i < 3; i++)
        s[i] = DotProduct(n, in[i]) + d;

    XYZ out[4];
    int count = 0;
    for (int i = 0; i < 3; i++) {
        const int j = (i + 1) % 3;
        const bool keepi = s[i] >= 0, keepj = s[j] >= 0;
        if (keepi)
            out[count++] = in[i];
        if (keepi != keepj)
            out[count++] = PlaneCrossing(in[i], in[j], s[i], s[j]);
    }
    for (int i = 0; i < count; i++)
        p[i] = out[i];
    return count;
}

int ContourFacet(Facet facet, XYZ n, double d, XYZ *p1, XYZ *p2)
{
    double s[3];
    for (int i = 0; i < 3; i++)
        s[i] = DotProduct(n, facet.p[i]) + d;

    XYZ cross[3];
    int count = 0;
    for (int i = 0; i < 3; i++) {
        const int j = (i + 1) % 3;
        if ((s[i] > 0) != (s[j] > 0))
            cross[count++] = PlaneCrossing(facet.p[i], facet.p[j], s[i], s[j]);
    }
    /* A triangle's corners split into two groups cross exactly two edges. */
    if (count != 2)
        return FALSE;
    *p1 = cross[0];
    *p2 = cross[1];
    return TRUE;
}

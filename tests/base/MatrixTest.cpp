// Matrix layout, products, inverses, decomposition, quaternions and the
// projection helpers.
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGQuaternion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

OSG_USING_NAMESPACE

namespace
{

// A well-conditioned matrix with every element different.
Matrix sample(void)
{
    return Matrix(2, 1, 0, 4,
                  0, 3, 1, 5,
                  1, 0, 4, 6,
                  0.1f, 0.2f, 0.3f, 1);
}

Matrix translation(Real32 x, Real32 y, Real32 z)
{
    Matrix m;
    m.setTranslate(x, y, z);
    return m;
}

Matrix scaling(Real32 x, Real32 y, Real32 z)
{
    Matrix m;
    m.setScale(x, y, z);
    return m;
}

} // namespace

TEST(MatrixLayout, ColumnsAreStoredRowsAreRead)
{
    Matrix m(1, 2, 3, 4,
             5, 6, 7, 8,
             9, 10, 11, 12,
             13, 14, 15, 16);
    // m[column][row]; the 4th argument is the x translation.
    EXPECT_EQ(m[3][0], 4);
    EXPECT_EQ(m[0][1], 5);
    EXPECT_EQ(m[1][0], 2);

    // getValues() is column-major, ready for glLoadMatrixf.
    const Real32 *v = m.getValues();
    EXPECT_EQ(v[0], 1);
    EXPECT_EQ(v[1], 5);
    EXPECT_EQ(v[4], 2);
    EXPECT_EQ(v[12], 4);

    Matrix t;
    t.setValueTransposed(1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16);
    EXPECT_EQ(t, m);
}

TEST(MatrixLayout, SetValueFromArrayAndText)
{
    Real32 cols[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1};
    Matrix m;
    m.setValue(cols); // transposed = true: consecutive columns
    EXPECT_EQ(m[3][1], 8);
    m.setValue(cols, false); // rows
    EXPECT_EQ(m[1][3], 8);
    EXPECT_EQ(m[3][1], 0);

    m.setValue("1,0,0,4\t0 1 0 5\n0 0 1 6, 0 0 0 1", false);
    EXPECT_EQ(m, translation(4, 5, 6));

    m.setValue("2 3");
    EXPECT_EQ(m[0][0], 2);
    EXPECT_EQ(m[0][1], 3);
    EXPECT_EQ(m[1][1], 0); // missing numbers are 0

    m.setValue("");
    EXPECT_EQ(m, Matrix::identity());
    m.setValue(static_cast<const Char8 *>(NULL));
    EXPECT_EQ(m, Matrix::identity());
}

TEST(MatrixLayout, PartialSettersTouchOnlyTheirElements)
{
    Matrix m = sample();
    m.setTranslate(Vec3f(7, 8, 9));
    EXPECT_EQ(m[3][0], 7);
    EXPECT_EQ(m[3][3], 1);
    EXPECT_EQ(m[3][1], 8);
    EXPECT_EQ(m[0][0], 2);

    m.setScale(5);
    EXPECT_EQ(m[0][0], 5);
    EXPECT_EQ(m[2][2], 5);
    EXPECT_EQ(m[1][0], 1); // off-diagonal kept
    EXPECT_EQ(m[3][3], 1);
}

TEST(MatrixProduct, MultAppliesTheArgumentFirst)
{
    Matrix m = translation(10, 0, 0);
    m.mult(scaling(2, 2, 2));
    EXPECT_EQ(m * Pnt3f(1, 1, 1), Pnt3f(12, 2, 2));

    Matrix l = translation(10, 0, 0);
    l.multLeft(scaling(2, 2, 2));
    EXPECT_EQ(l * Pnt3f(1, 1, 1), Pnt3f(22, 2, 2));
}

TEST(MatrixTransform, PointsGetTranslationVectorsDoNot)
{
    Matrix m = translation(1, 2, 3);
    m.mult(scaling(2, 2, 2));

    EXPECT_EQ(m * Pnt3f(1, 1, 1), Pnt3f(3, 4, 5));
    EXPECT_EQ(m * Vec3f(1, 1, 1), Vec3f(2, 2, 2));

    Pnt3f p(1, 1, 1);
    m.mult(p, p); // in place
    EXPECT_EQ(p, Pnt3f(3, 4, 5));

    Pnt3f r;
    m.mult3x3(Pnt3f(1, 1, 1), r);
    EXPECT_EQ(r, Pnt3f(2, 2, 2));

    // Row-vector forms use the transpose.
    Matrix t = sample();
    Vec3f  left, right;
    t.multLeft(Vec3f(1, 2, 3), left);
    t.transposed().mult(Vec3f(1, 2, 3), right);
    EXPECT_EQ(left, right);
}

TEST(MatrixTransform, FourComponentForms)
{
    Matrix m = sample();

    Pnt4f full;
    m.mult(Pnt4f(1, 2, 3, 2), full);
    EXPECT_FLOAT_EQ(full[0], 2 * 1 + 1 * 2 + 0 * 3 + 4 * 2);
    EXPECT_FLOAT_EQ(full[3], 0.1f + 0.4f + 0.9f + 2);

    // Vec4f: x, y, z ignore the translation and the input w; the output w
    // still takes m[3][3] * w.
    Vec4f v;
    m.mult(Vec4f(1, 2, 3, 2), v);
    EXPECT_FLOAT_EQ(v[0], 2 * 1 + 1 * 2 + 0 * 3);
    EXPECT_FLOAT_EQ(v[1], 0 * 1 + 3 * 2 + 1 * 3);
    EXPECT_FLOAT_EQ(v[3], 0.1f + 0.4f + 0.9f + 2);
}

TEST(MatrixTransform, MultFullDividesByW)
{
    Matrix m;
    m[3][3] = 2;
    Pnt3f p;
    m.multFull(Pnt3f(2, 4, 6), p);
    EXPECT_EQ(p, Pnt3f(1, 2, 3));

    LogCapture log;
    m[3][3] = 0;
    m.multFull(Pnt3f(2, 4, 6), p);
    EXPECT_EQ(p, Pnt3f(2, 4, 6));
    EXPECT_EQ(log.take(),
              "WARNING:  TransformationMatrix<>::multFull(Pnt3, Pnt3): "
              "w == 0.0\n");
}

TEST(MatrixTransform, MultFullMatrixPntGivesZeroForZeroW)
{
    // w = x: (2, 4, 6) has w 2, (0, 1, 1) has w 0
    Matrix m;
    m[0][3] = 1;
    m[3][3] = 0;

    Pnt3f p;
    m.multFullMatrixPnt(Pnt3f(2, 4, 6), p);
    EXPECT_EQ(p, Pnt3f(1, 2, 3));

    p = Pnt3f(0, 1, 1);
    m.multFullMatrixPnt(p);
    EXPECT_EQ(p, Pnt3f(0, 0, 0));
}

TEST(MatrixTransform, InPlaceForms)
{
    const Matrix m = sample();

    Pnt3f p(1, 2, 3), expect;
    m.multMatrixPnt(p, expect);
    m.multMatrixPnt(p);
    EXPECT_EQ(p, expect);

    Vec3f v(1, 2, 3), expectV;
    m.multMatrixVec(v, expectV);
    m.multMatrixVec(v);
    EXPECT_EQ(v, expectV);

    p = Pnt3f(1, 2, 3);
    m.multFullMatrixPnt(p, expect);
    m.multFullMatrixPnt(p);
    EXPECT_EQ(p, expect);

    // the row-vector forms: (p, 1)^T * M and (v, 0)^T * M
    p = Pnt3f(1, 2, 3);
    m.multPntMatrix(p);
    EXPECT_EQ(p, Pnt3f(1 * 2 + 2 * 0 + 3 * 1 + 0.1f, 1 * 1 + 2 * 3 + 3 * 0 + 0.2f,
                       1 * 0 + 2 * 1 + 3 * 4 + 0.3f));
    v = Vec3f(1, 2, 3);
    m.multVecMatrix(v);
    EXPECT_EQ(v, Vec3f(5, 7, 14));
}

TEST(MatrixLayout, ConstructorsFromColumnsLeaveTheBottomRowZero)
{
    Matrix m3(Vec3f(1, 2, 3), Vec3f(4, 5, 6), Vec3f(7, 8, 9));
    Matrix m4(Vec3f(1, 2, 3), Vec3f(4, 5, 6), Vec3f(7, 8, 9), Vec3f(10, 11, 12));
    for(UInt32 c = 0; c < 4; ++c)
    {
        EXPECT_EQ(m3[c][3], 0.f) << c;
        EXPECT_EQ(m4[c][3], 0.f) << c;
    }
    EXPECT_EQ(m3[3], Vec4f(0, 0, 0, 0));
    EXPECT_EQ(m4[3], Vec4f(10, 11, 12, 0));
    EXPECT_EQ(m4[1], Vec4f(4, 5, 6, 0));

    // setValue from columns keeps what it doesn't set
    Matrix id;
    id.setValue(Vec3f(1, 2, 3), Vec3f(4, 5, 6), Vec3f(7, 8, 9));
    EXPECT_EQ(id[3], Vec4f(0, 0, 0, 1));
}

TEST(MatrixInverse, InverseTimesMatrixIsIdentity)
{
    Matrix m = sample(), inv;
    ASSERT_TRUE(m.inverse(inv));
    Matrix p = m;
    p.mult(inv);
    EXPECT_TRUE(p.equals(Matrix::identity(), 1e-5f)) << p;

    Matrix in = m;
    ASSERT_TRUE(in.invert());
    EXPECT_TRUE(in.equals(inv, 1e-6f));

    Matrix from;
    ASSERT_TRUE(from.invertFrom(m));
    EXPECT_TRUE(from.equals(inv, 1e-6f));
}

TEST(MatrixInverse, DeterminantsOfKnownMatrices)
{
    EXPECT_FLOAT_EQ(scaling(2, 3, 4).det(), 24.f);
    EXPECT_FLOAT_EQ(scaling(2, 3, 4).det3(), 24.f);
    Matrix m = scaling(2, 3, 4);
    m[3][3] = 0.5f;
    EXPECT_FLOAT_EQ(m.det(), 12.f);
    EXPECT_FLOAT_EQ(m.det3(), 24.f);
    // Swapping two columns flips the sign.
    Matrix s(0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    EXPECT_FLOAT_EQ(s.det(), -1.f);

    // det(AB) = det(A) det(B) and det(A^T) = det(A) for a full matrix.
    Matrix a = sample(), b = sample();
    b.transpose();
    b[3][2] = 0.7f;
    Matrix ab = a;
    ab.mult(b);
    EXPECT_NEAR(ab.det(), a.det() * b.det(), 1e-3f * std::fabs(ab.det()));
    EXPECT_FLOAT_EQ(a.transposed().det(), a.det());
    EXPECT_NE(a.det(), 0.f);
}

TEST(MatrixInverse, SingularGivesIdentityAndFalse)
{
    Matrix m = sample();
    m[1] = m[0]; // two equal columns
    Matrix inv = sample();
    EXPECT_FALSE(m.inverse(inv));
    EXPECT_EQ(inv, Matrix::identity());
    EXPECT_FALSE(m.invert());
    EXPECT_EQ(m, Matrix::identity());

    // The threshold is absolute: det 1e-24 still inverts, 1e-33 does not.
    Matrix small = scaling(1e-8f, 1e-8f, 1e-8f);
    EXPECT_TRUE(small.inverse(inv));
    EXPECT_NEAR(inv[0][0], 1e8f, 1e2f);
    Matrix tiny = scaling(1e-11f, 1e-11f, 1e-11f);
    EXPECT_FALSE(tiny.inverse(inv));
}

TEST(MatrixInverse, ThreeByThreeForms)
{
    Matrix m = sample(), inv;
    ASSERT_TRUE(m.inverse3(inv));
    EXPECT_EQ(inv[3][0], 0);
    EXPECT_EQ(inv[3][3], 1);
    EXPECT_EQ(inv[0][3], 0);
    Vec3f v = m * Vec3f(1, 2, 3);
    EXPECT_TRUE((inv * v).equals(Vec3f(1, 2, 3), 1e-5f));

    Matrix flat = scaling(1, 1, 0);
    EXPECT_FALSE(flat.invert3());
    EXPECT_EQ(flat, Matrix::identity());
}

TEST(MatrixInverse, Transpose)
{
    Matrix m = sample(), t = sample();
    t.transpose();
    EXPECT_EQ(t[0][3], m[3][0]);
    Matrix u;
    u.transposeFrom(t);
    EXPECT_EQ(u, m);
}

TEST(MatrixDecomposition, SetAndGetTransformRoundTrip)
{
    Vec3f      t(1, 2, 3), s(2, 3, 4), c(0.5f, -1, 2);
    Quaternion r(Vec3f(1, 1, 0), 0.7f);
    Quaternion so(Vec3f(0, 1, 1), 0.3f);

    Matrix m;
    m.setTransform(t, r, s, so, c);

    Vec3f      t2, s2;
    Quaternion r2, so2;
    m.getTransform(t2, r2, s2, so2, c);

    // as in OpenSG, the scale orientation comes back inverted: only its
    // inverse rebuilds the matrix
    Matrix back;
    back.setTransform(t2, r2, s2, so2.inverse(), c);
    EXPECT_TRUE(back.equals(m, 1e-4f)) << m << back;
    Matrix asGiven;
    asGiven.setTransform(t2, r2, s2, so2, c);
    EXPECT_FALSE(asGiven.equals(m, 1e-2f)) << asGiven;
    EXPECT_TRUE(t2.equals(t, 1e-4f)) << t2;
    // Rotation is unique up to the quaternion's sign.
    EXPECT_TRUE(r2.equals(r, 1e-4f) ||
                r2.equals(Quaternion(-r[0], -r[1], -r[2], -r[3]), 1e-4f));
}

TEST(MatrixDecomposition, RotationAndScaleWithoutOrientation)
{
    Quaternion r(Vec3f(0, 0, 1), Pi / 2);
    Matrix     m;
    m.setTransform(Vec3f(5, 0, 0), r, Vec3f(2, 2, 2));
    EXPECT_EQ(m * Pnt3f(1, 0, 0), Pnt3f(5, 2, 0));

    Vec3f      t, s;
    Quaternion r2, so;
    m.getTransform(t, r2, s, so);
    EXPECT_TRUE(t.equals(Vec3f(5, 0, 0), 1e-5f));
    EXPECT_TRUE(s.equals(Vec3f(2, 2, 2), 1e-5f)) << s;
}

TEST(MatrixDecomposition, MirroringNegatesTheScale)
{
    Matrix m = scaling(-2, -2, -2);
    Vec3f      t, s;
    Quaternion r, so;
    m.getTransform(t, r, s, so);
    EXPECT_TRUE(s.equals(Vec3f(-2, -2, -2), 1e-5f)) << s;

    Matrix back;
    back.setTransform(t, r, s, so);
    EXPECT_TRUE(back.equals(m, 1e-5f)) << back;
}

TEST(MatrixOutput, FourRowsFixedWidth)
{
    std::ostringstream out;
    out << translation(1.5f, -2, 0);
    EXPECT_EQ(out.str(),
              "   1.000    0.000    0.000    1.500 \n"
              "   0.000    1.000    0.000   -2.000 \n"
              "   0.000    0.000    1.000    0.000 \n"
              "   0.000    0.000    0.000    1.000 \n");
    // The stream's own formatting is restored.
    out.str("");
    out << 0.5;
    EXPECT_EQ(out.str(), "0.5");
}

TEST(Quaternion, AxisAngleBothWays)
{
    Quaternion q;
    EXPECT_EQ(q, Quaternion(0, 0, 0, 1));

    q.setValueAsAxisDeg(0, 0, 2, 90);
    Vec3f  axis;
    Real32 angle;
    q.getValueAsAxisRad(axis, angle);
    EXPECT_TRUE(axis.equals(Vec3f(0, 0, 1), 1e-6f));
    EXPECT_FLOAT_EQ(angle, Pi / 2);

    q.setValueAsAxisRad("1 0 0 3.14159265");
    Real32 x, y, z, w;
    q.getValueAsAxisDeg(x, y, z, w);
    EXPECT_NEAR(w, 180.f, 1e-3f);
    EXPECT_NEAR(x, 1.f, 1e-6f);

    q.setValueAsAxisRad(Vec3f(0, 0, 0), 1.f);
    EXPECT_EQ(q, Quaternion::identity());
}

TEST(Quaternion, RotatesLikeItsMatrix)
{
    Quaternion q(Vec3f(0, 0, 1), Pi / 2);
    Matrix     m;
    q.getValue(m);
    EXPECT_EQ(m * Vec3f(1, 0, 0), Vec3f(0, 1, 0));
    EXPECT_EQ(m[3][3], 1);

    Quaternion any(Vec3f(1, 2, 3), 1.1f);
    any.getValue(m);
    Vec3f byQuat;
    any.multVec(Vec3f(0.3f, -2, 5), byQuat);
    EXPECT_TRUE(byQuat.equals(m * Vec3f(0.3f, -2, 5), 1e-5f));

    Quaternion fromMatrix(m);
    EXPECT_TRUE(fromMatrix.equals(any, 1e-5f));
}

TEST(Quaternion, ProductComposesLikeMatrices)
{
    Quaternion a(Vec3f(0, 0, 1), Pi / 2), b(Vec3f(1, 0, 0), Pi / 2);
    Matrix     ma, mb, mab;
    a.getValue(ma);
    b.getValue(mb);
    (a * b).getValue(mab);
    ma.mult(mb);
    EXPECT_TRUE(mab.equals(ma, 1e-6f)) << mab << ma;

    Quaternion c = a;
    c *= b;
    EXPECT_EQ(c, a * b);
    c.multLeft(a.inverse());
    EXPECT_TRUE(c.equals(b, 1e-6f));

    Quaternion i = a;
    i.invert();
    EXPECT_TRUE((a * i).equals(Quaternion::identity(), 1e-6f));
}

TEST(Quaternion, EulerAnglesRotateAboutXThenYThenZ)
{
    const Real32 a = 0.3f, b = -0.7f, g = 1.1f;
    Quaternion   q;
    q.setValue(a, b, g);

    Matrix expect, rx, ry, rz;
    rx.setRotate(Quaternion(Vec3f(1, 0, 0), a));
    ry.setRotate(Quaternion(Vec3f(0, 1, 0), b));
    rz.setRotate(Quaternion(Vec3f(0, 0, 1), g));
    expect = rz;
    expect.mult(ry);
    expect.mult(rx);

    Matrix m;
    q.getValue(m);
    EXPECT_TRUE(m.equals(expect, 1e-6f)) << m << expect;

    // one angle alone is that axis' rotation
    q.setValue(0.f, 0.f, Pi / 2);
    EXPECT_TRUE(q.equals(Quaternion(Vec3f(0, 0, 1), Pi / 2), 1e-6f));
}

TEST(Quaternion, FromToVectors)
{
    Quaternion q(Vec3f(1, 0, 0), Vec3f(0, 0, 3));
    Vec3f      v;
    q.multVec(Vec3f(2, 0, 0), v);
    EXPECT_TRUE(v.equals(Vec3f(0, 0, 2), 1e-6f)) << v;

    Quaternion back(Vec3f(1, 0, 0), Vec3f(-1, 0, 0));
    back.multVec(Vec3f(1, 0, 0), v);
    EXPECT_TRUE(v.equals(Vec3f(-1, 0, 0), 1e-6f)) << v;
}

TEST(MatrixUtility, PerspectiveTakesTheHalfAngle)
{
    // fov 2 * atan(0.5), square viewport: a unit quad one unit in front of
    // the camera fills the view exactly.
    Matrix p;
    ASSERT_TRUE(MatrixPerspective(p, std::atan(0.5f), 1.f, 0.01f, 100.f));
    Pnt3f ndc;
    p.multFull(Pnt3f(0.5f, 0.5f, -1), ndc);
    EXPECT_NEAR(ndc[0], 1.f, 1e-5f);
    EXPECT_NEAR(ndc[1], 1.f, 1e-5f);
    p.multFull(Pnt3f(0, 0, -0.01f), ndc);
    EXPECT_NEAR(ndc[2], -1.f, 1e-4f);
    p.multFull(Pnt3f(0, 0, -100), ndc);
    EXPECT_NEAR(ndc[2], 1.f, 1e-4f);
}

TEST(MatrixUtility, PerspectiveRejectsBadArguments)
{
    LogCapture log;
    Matrix     p = sample();
    EXPECT_FALSE(MatrixPerspective(p, 0.5f, 1.f, 2.f, 1.f));
    EXPECT_EQ(p, Matrix::identity());
    EXPECT_EQ(log.take(), "WARNING:  MatrixPerspective: near 2 > far 1!\n");

    EXPECT_FALSE(MatrixPerspective(p, 0.f, 0.f, 1.f, 1.f));
    EXPECT_EQ(log.take(),
              "WARNING:  MatrixPerspective: fov 0 very small!\n"
              "WARNING:  MatrixPerspective: near 1 ~= far 1!\n"
              "WARNING:  MatrixPerspective: aspect ratio 0 very small!\n");
}

TEST(MatrixUtility, OrthogonalAndFrustumMapTheBoxToNdc)
{
    Matrix o;
    ASSERT_TRUE(MatrixOrthogonal(o, -2, 2, -1, 3, 1, 11));
    EXPECT_EQ(o * Pnt3f(2, 3, -11), Pnt3f(1, 1, 1));
    EXPECT_EQ(o * Pnt3f(-2, -1, -1), Pnt3f(-1, -1, -1));

    Matrix f;
    ASSERT_TRUE(MatrixFrustum(f, -1, 3, -2, 2, 1, 10));
    Pnt3f ndc;
    f.multFull(Pnt3f(3, 2, -1), ndc);
    EXPECT_TRUE(ndc.equals(Pnt3f(1, 1, -1), 1e-5f)) << ndc;
    f.multFull(Pnt3f(-10, -20, -10), ndc);
    EXPECT_TRUE(ndc.equals(Pnt3f(-1, -1, 1), 1e-5f)) << ndc;

    EXPECT_FALSE(MatrixOrthogonal(o, 1, 1, 0, 1, 0, 1));
    EXPECT_EQ(o, Matrix::identity());
}

TEST(MatrixUtility, LookAtBuildsCameraToWorld)
{
    Matrix m;
    // false is success, as in OpenSG
    ASSERT_FALSE(MatrixLookAt(m, Pnt3f(0, 0, 5), Pnt3f(0, 0, 0), Vec3f(0, 1, 0)));
    EXPECT_EQ(m, translation(0, 0, 5));

    ASSERT_FALSE(MatrixLookAt(m, 1, 2, 3, 4, 2, 3, 0, 0, 1));
    EXPECT_EQ(m * Pnt3f(0, 0, 0), Pnt3f(1, 2, 3));   // camera position
    EXPECT_EQ(m * Vec3f(0, 0, -1), Vec3f(1, 0, 0));  // looks down -z
    EXPECT_EQ(m * Vec3f(0, 1, 0), Vec3f(0, 0, 1));   // up stays up
    EXPECT_NEAR(m.det3(), 1.f, 1e-6f);

    // up along the view direction, or no direction at all: failure, and
    // the matrix is left as it was
    const Matrix before = m;
    EXPECT_TRUE(MatrixLookAt(m, Pnt3f(0, 0, 0), Pnt3f(0, 1, 0), Vec3f(0, 1, 0)));
    EXPECT_EQ(m, before);
    EXPECT_TRUE(MatrixLookAt(m, Pnt3f(1, 1, 1), Pnt3f(1, 1, 1), Vec3f(0, 1, 0)));
    EXPECT_EQ(m, before);
}

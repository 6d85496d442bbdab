// ComponentTransform: the matrix made from its five components, the
// decomposition of an edited matrix back into them, the defaults every
// create() gives, and a node under it drawn where the CPU puts it.
#include "GeometryRenderScene.h"

#include <OpenSG/OSGComponentTransform.h>
#include <OpenSG/OSGIntersectAction.h>

#include <cmath>

using namespace osg;
using namespace geometrytest;

namespace componenttransformtest
{

Matrix translation(const Vec3f &v)
{
    Matrix m;
    m.setTranslate(v);
    return m;
}

Matrix rotation(const Quaternion &q)
{
    Matrix m;
    m.setRotate(q);
    return m;
}

Matrix scaling(const Vec3f &s)
{
    Matrix m;
    m.setScale(s);
    return m;
}

/// translation * center * rotation * scaleOrientation * scale *
/// scaleOrientation^-1 * center^-1, one factor at a time.
Matrix composed(const Vec3f &t, const Quaternion &r, const Vec3f &s, const Quaternion &so,
                const Vec3f &c)
{
    Quaternion soInv = so;
    soInv.invert();
    Matrix m = translation(t);
    m.mult(translation(c));
    m.mult(rotation(r));
    m.mult(rotation(so));
    m.mult(scaling(s));
    m.mult(rotation(soInv));
    m.mult(translation(-c));
    return m;
}

::testing::AssertionResult sameMatrix(const Matrix &a, const Matrix &b, Real32 tol)
{
    for(UInt32 c = 0; c < 4; ++c)
        for(UInt32 r = 0; r < 4; ++r)
            if(std::fabs(a[c][r] - b[c][r]) > tol)
                return ::testing::AssertionFailure()
                       << "element (" << c << ", " << r << "): " << a[c][r] << " vs " << b[c][r];
    return ::testing::AssertionSuccess();
}

ComponentTransformPtr makeComponents(const Vec3f &t, const Quaternion &r, const Vec3f &s,
                                     const Quaternion &so, const Vec3f &c)
{
    ComponentTransformPtr ct = ComponentTransform::create();
    beginEditCP(ct);
    ct->setTranslation(t);
    ct->setRotation(r);
    ct->setScale(s);
    ct->setScaleOrientation(so);
    ct->setCenter(c);
    endEditCP(ct);
    return ct;
}

} // namespace componenttransformtest

using namespace componenttransformtest;

TEST(ComponentTransform, ComponentsMakeTheMatrixAndAnEditedMatrixDecomposesBack)
{
    // every create() starts from scale (1, 1, 1) and an identity matrix
    for(int i = 0; i < 2; ++i)
    {
        ComponentTransformPtr ct = ComponentTransform::create();
        addRefCP(ct);
        EXPECT_EQ(ct->getScale(), Vec3f(1, 1, 1));
        EXPECT_EQ(ct->getTranslation(), Vec3f(0, 0, 0));
        EXPECT_EQ(ct->getCenter(), Vec3f(0, 0, 0));
        beginEditCP(ct);
        endEditCP(ct);
        EXPECT_TRUE(sameMatrix(ct->getMatrix(), Matrix(), 0));
        subRefCP(ct);
    }

    const Vec3f      t(1.5f, -2, 0.25f), s(2, 0.5f, 3), c(0.5f, 1, -1);
    const Quaternion r(Vec3f(1, 2, 3), 0.7f), so(Vec3f(0, 1, 1), -0.4f);

    ComponentTransformPtr ct = makeComponents(t, r, s, so, c);
    addRefCP(ct);
    EXPECT_TRUE(sameMatrix(ct->getMatrix(), composed(t, r, s, so, c), 1e-5f));

    // one component edited alone rebuilds the matrix from all five
    const Vec3f t2(-3, 0, 4);
    beginEditCP(ct, ComponentTransform::TranslationFieldMask);
    ct->setTranslation(t2);
    endEditCP(ct, ComponentTransform::TranslationFieldMask);
    EXPECT_TRUE(sameMatrix(ct->getMatrix(), composed(t2, r, s, so, c), 1e-5f));

    // a matrix edited alone is decomposed into components that reproduce it
    // (about the centre the node already has)
    const Matrix wanted = composed(Vec3f(0.5f, 2, -1), Quaternion(Vec3f(0, 0, 1), 1.1f),
                                   Vec3f(1.5f, 2.5f, 0.75f), Quaternion(), Vec3f(0, 0, 0));
    beginEditCP(ct, Transform::MatrixFieldMask);
    ct->setMatrix(wanted);
    endEditCP(ct, Transform::MatrixFieldMask);
    EXPECT_TRUE(sameMatrix(ct->getMatrix(), wanted, 0));
    EXPECT_TRUE(sameMatrix(composed(ct->getTranslation(), ct->getRotation(), ct->getScale(),
                                    ct->getScaleOrientation(), ct->getCenter()),
                           wanted, 1e-4f));
    EXPECT_NEAR(ct->getScale()[0] * ct->getScale()[1] * ct->getScale()[2], 1.5f * 2.5f * 0.75f,
                1e-4f);

    // and an edit of those components gives the same matrix again
    ComponentTransformPtr again = makeComponents(ct->getTranslation(), ct->getRotation(),
                                                 ct->getScale(), ct->getScaleOrientation(),
                                                 ct->getCenter());
    addRefCP(again);
    EXPECT_TRUE(sameMatrix(again->getMatrix(), wanted, 1e-4f));

    EXPECT_TRUE(ct->getType().isDerivedFrom(Transform::getClassType()));
    subRefCP(again);
    subRefCP(ct);
}

TEST(ComponentTransform, ChildrenAreDrawnWhereTheMatrixProjectsThem)
{
    RenderScene s;
    NEED_GL(s);

    // scaled, turned a quarter about z around a centre, then moved
    const Vec3f      t(0.25f, -0.25f, 0), sc(0.5f, 0.25f, 1), c(0.125f, 0, 0);
    const Quaternion r(Vec3f(0, 0, 1), Pi / 2);
    ComponentTransformPtr ct = makeComponents(t, r, sc, Quaternion(), c);
    NodePtr               n  = s.add(ct);
    beginEditCP(n, Node::ChildrenFieldMask);
    n->addChild(makeNodeFor(greenQuad()));
    endEditCP(n, Node::ChildrenFieldMask);

    std::vector<UInt8> img = s.render();

    // the CPU: the quad's corners through the same composition, then the
    // pixels whose centres lie inside (identity camera: x, y in [-1, 1])
    const Matrix m  = composed(t, r, sc, Quaternion(), c);
    Real32       lo[2] = {10, 10}, hi[2] = {-10, -10};
    for(Real32 x : {-0.5f, 0.5f})
    {
        for(Real32 y : {-0.5f, 0.5f})
        {
            Pnt3f p;
            m.mult(Pnt3f(x, y, 0), p);
            for(int a = 0; a < 2; ++a)
            {
                lo[a] = std::min(lo[a], p[a]);
                hi[a] = std::max(hi[a], p[a]);
            }
        }
    }
    UInt32 want = 0, wrong = 0;
    for(UInt32 py = 0; py < H; ++py)
    {
        for(UInt32 px = 0; px < W; ++px)
        {
            const Real32 x = (px + 0.5f) / (W / 2) - 1, y = (py + 0.5f) / (H / 2) - 1;
            const bool   inside = x > lo[0] && x < hi[0] && y > lo[1] && y < hi[1];
            const UInt8 *p      = pixel(img, px, py);
            want += inside;
            wrong += inside != (p[1] == 255);
        }
    }
    EXPECT_EQ(wrong, 0u);
    EXPECT_EQ(want, 8u * 16u) << "a quarter-turned 0.25 x 0.5 rectangle";
}

TEST(ComponentTransform, PickingSeesTheChildrenWhereTheyAreDrawn)
{
    // a quad moved to x = 3 and turned to face +x
    ComponentTransformPtr ct = makeComponents(Vec3f(3, 0, 0), Quaternion(Vec3f(0, 1, 0), Pi / 2),
                                              Vec3f(1, 1, 1), Quaternion(), Vec3f(0, 0, 0));
    NodePtr n = makeNodeFor(ct);
    addRefCP(n);
    beginEditCP(n, Node::ChildrenFieldMask);
    n->addChild(makeNodeFor(makePlaneGeo(1, 1, 1, 1)));
    endEditCP(n, Node::ChildrenFieldMask);

    IntersectAction *ia = IntersectAction::create(Line(Pnt3f(10, 0.2f, 0.1f), Vec3f(-1, 0, 0)));
    ia->apply(n);
    ASSERT_TRUE(ia->didHit());
    EXPECT_NEAR(ia->getHitPoint()[0], 3, 1e-5f);
    EXPECT_NEAR(ia->getHitT(), 7, 1e-5f);

    ia->setLine(Line(Pnt3f(10, 0.2f, 0.7f), Vec3f(-1, 0, 0)));
    ia->apply(n);
    EXPECT_FALSE(ia->didHit()) << "beside the turned quad";
    delete ia;
    subRefCP(n);
}

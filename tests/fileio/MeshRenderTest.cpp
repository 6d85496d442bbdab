// A loaded mesh draws where it should: the cube of an OBJ file, turned and
// seen by a perspective camera, covers exactly the pixels inside the hull
// of its corners projected on the CPU.
#include "MeshTestSupport.h"

#include <window/WindowTestSupport.h>

#include <OpenSG/OSGQuaternion.h>

#include <cmath>

using namespace osg;
using namespace meshtest;

namespace
{

const char *emissiveCube = "mtllib lit.mtl\n"
                           "v -1 -1 -1\nv 1 -1 -1\nv -1 1 -1\nv 1 1 -1\n"
                           "v -1 -1 1\nv 1 -1 1\nv -1 1 1\nv 1 1 1\n"
                           "usemtl glow\n"
                           "f 2 4 8 6\nf 1 5 7 3\nf 3 7 8 4\nf 1 2 6 5\nf 5 6 8 7\nf 1 3 4 2\n";

/// Whether p lies inside the convex hull of pts by more than margin
/// pixels (margin < 0: within -margin of it).
bool insideHull(const std::vector<Vec2f> &pts, const Vec2f &p, Real32 margin)
{
    // gift wrapping: the hull is small
    std::vector<Vec2f> hull;
    UInt32             start = 0;
    for(UInt32 i = 1; i < pts.size(); ++i)
        if(pts[i][0] < pts[start][0])
            start = i;
    UInt32 cur = start;
    do
    {
        hull.push_back(pts[cur]);
        UInt32 next = (cur + 1) % pts.size();
        for(UInt32 i = 0; i < pts.size(); ++i)
        {
            const Vec2f a = pts[next] - pts[cur], b = pts[i] - pts[cur];
            if(a[0] * b[1] - a[1] * b[0] < 0)
                next = i;
        }
        cur = next;
    } while(cur != start && hull.size() <= pts.size());

    for(UInt32 i = 0; i < hull.size(); ++i)
    {
        const Vec2f a = hull[i], b = hull[(i + 1) % hull.size()];
        Vec2f       e = b - a;
        e.normalize();
        // counter-clockwise hull: inside is to the left of each edge
        const Real32 d = e[0] * (p[1] - a[1]) - e[1] * (p[0] - a[0]);
        if(d <= margin)
            return false;
    }
    return true;
}

class MeshRender : public wintest::FrameFixture
{
  protected:
    MeshRender() : FrameFixture(96, 72) {}
};

} // namespace

TEST_F(MeshRender, LoadedCubeCoversItsProjection)
{
    putFile(path("lit.obj"), emissiveCube);
    putFile(path("lit.mtl"), "newmtl glow\nKd 0 0 0\nKa 0 0 0\nKe 1 1 0\n");

    NodePtr cube = SceneFileHandler::the().read(path("lit.obj").c_str());
    ASSERT_NE(cube, NullFC);

    // turned so that three faces show, seen from 6 units away
    TransformPtr turn = Transform::create();
    Matrix       m;
    Quaternion   q(Vec3f(1, 0, 0), 0.5f);
    q.mult(Quaternion(Vec3f(0, 1, 0), 0.7f));
    m.setTransform(Vec3f(0.3f, -0.2f, 0), q);
    beginEditCP(turn);
    turn->setMatrix(m);
    endEditCP(turn);
    NodePtr turned = Node::create();
    beginEditCP(turned);
    turned->setCore(turn);
    turned->addChild(cube);
    endEditCP(turned);
    beginEditCP(root);
    root->addChild(turned);
    endEditCP(root);

    Matrix eye;
    eye.setTranslate(0, 0, 6);
    beginEditCP(beacon);
    TransformPtr::dcast(beacon->getCore())->setMatrix(eye);
    endEditCP(beacon);

    ViewportPtr vp = port(0, 1, 0, 1, solid(wintest::Grey));
    frame();
    const std::vector<wintest::RGBA> px = wintest::readAll(win);

    Matrix toScreen;
    camera->getWorldToScreen(toScreen, *vp);
    std::vector<Vec2f> corners;
    for(Int32 i = 0; i < 8; ++i)
    {
        Pnt3f p((i & 1) ? 1.f : -1.f, (i & 2) ? 1.f : -1.f, (i & 4) ? 1.f : -1.f);
        m.multFullMatrixPnt(p);
        toScreen.multFullMatrixPnt(p);
        corners.push_back(Vec2f((p[0] + 1) / 2 * winW, (p[1] + 1) / 2 * winH));
    }

    UInt32 covered = 0, wrong = 0;
    for(UInt32 y = 0; y < winH; ++y)
        for(UInt32 x = 0; x < winW; ++x)
        {
            const Vec2f          centre(x + 0.5f, y + 0.5f);
            const wintest::RGBA &c = px[y * winW + x];
            if(insideHull(corners, centre, 1.f))
            {
                ++covered;
                // emission only: the yellow the material gives
                wrong += c.r < 250 || c.g < 250 || c.b > 5;
            }
            else if(!insideHull(corners, centre, -1.f))
            {
                wrong += c != wintest::Grey;
            }
        }
    EXPECT_GT(covered, 600u);
    EXPECT_EQ(wrong, 0u);
}

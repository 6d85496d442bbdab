// What the tests of the group cores share: a window looking down -z at a
// stage 3 units away, flat-coloured squares, and rendering one scene with
// the render action or the draw action.
#ifndef _CORESTESTSUPPORT_H_
#define _CORESTESTSUPPORT_H_

#include "window/WindowTestSupport.h"

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>

#include <initializer_list>
#include <memory>
#include <vector>

namespace corestest
{

using namespace osg;
using wintest::Blue;
using wintest::Green;
using wintest::Grey;
using wintest::Red;
using wintest::RGBA;

inline Color3f colour(const RGBA &c)
{
    return Color3f(c.r / 255.f, c.g / 255.f, c.b / 255.f);
}

/// An unlit material of one colour.
inline SimpleMaterialPtr flat(const RGBA &c)
{
    SimpleMaterialPtr mat = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setLit(false);
    mat->setDiffuse(colour(c));
    endEditCP(mat);
    return mat;
}

/// A node with core over children.
inline NodePtr node(const NodeCorePtr &core, std::initializer_list<NodePtr> children = {})
{
    NodePtr n = Node::create();
    beginEditCP(n);
    n->setCore(core);
    for(const NodePtr &child : children)
        n->addChild(child);
    endEditCP(n);
    return n;
}

/// A square of edge `edge` in the z = 0 plane, centred at the origin,
/// facing +z, in its own colour.
inline NodePtr square(const RGBA &c, Real32 edge = 0.6f)
{
    GeometryPtr geo = makePlaneGeo(edge, edge, 1, 1);
    beginEditCP(geo);
    geo->setMaterial(flat(c));
    endEditCP(geo);
    return node(geo);
}

inline TransformPtr transform(const Matrix &m)
{
    TransformPtr t = Transform::create();
    beginEditCP(t);
    t->setMatrix(m);
    endEditCP(t);
    return t;
}

inline Matrix translation(Real32 x, Real32 y, Real32 z = 0.f)
{
    Matrix m;
    m.setTranslate(x, y, z);
    return m;
}

/// Turned about z by deg degrees, then moved to (x, y).
inline Matrix placement(Real32 x, Real32 y, Real32 deg)
{
    Matrix m;
    m.setTransform(Vec3f(x, y, 0.f), Quaternion(Vec3f(0.f, 0.f, 1.f), osgdegree2rad(deg)));
    return m;
}

inline MaterialGroupPtr materialGroup(const RGBA &c)
{
    MaterialGroupPtr mg = MaterialGroup::create();
    beginEditCP(mg);
    mg->setMaterial(flat(c));
    endEditCP(mg);
    return mg;
}

/// The hit parameter of a ray from (x, y, 5) along -z through scene, -1 for
/// a miss.
inline Real32 pick(const NodePtr &scene, Real32 x, Real32 y)
{
    std::unique_ptr<IntersectAction> ia(
        IntersectAction::create(Line(Pnt3f(x, y, 5.f), Vec3f(0.f, 0.f, -1.f))));
    ia->apply(scene);
    return ia->getHitT();
}

enum Drawer
{
    WithRenderAction,
    WithDrawAction
};

/// A 64 x 48 window on a grey background; the camera at the origin looks
/// down -z, the stage stands 3 units in front of it.
class CoresFrame : public wintest::FrameFixture
{
  protected:
    void SetUp(void) override
    {
        wintest::FrameFixture::SetUp();
        if(win == NullFC)
            return;

        port(0.f, 1.f, 0.f, 1.f, solid(Grey));

        stage = node(transform(translation(0.f, 0.f, -3.f)));
        beginEditCP(root, Node::ChildrenFieldMask);
        root->addChild(stage);
        endEditCP(root, Node::ChildrenFieldMask);
    }

    /// Renders scene alone on the stage (where it may stand already).
    std::vector<RGBA> show(const NodePtr &scene, Drawer drawer)
    {
        addRefCP(scene);
        beginEditCP(stage, Node::ChildrenFieldMask);
        while(stage->getNChildren() > 0)
            stage->subChild(UInt32(0));
        stage->addChild(scene);
        endEditCP(stage, Node::ChildrenFieldMask);
        subRefCP(scene);

        if(drawer == WithRenderAction)
        {
            frame();
        }
        else
        {
            std::unique_ptr<DrawAction> draw(DrawAction::create());
            LogCapture                  log(LOG_WARNING);
            win->draw(draw.get());
            EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
            EXPECT_EQ(log.take(), "");
            EXPECT_TRUE(draw->getMaterial() == NULL);
        }
        return wintest::readAll(win);
    }

    /// The pixel that shows the stage point (x, y).
    RGBA at(const std::vector<RGBA> &px, Real32 x, Real32 y) const
    {
        const Real32 halfH = 3.f * osgtan(0.5f), halfW = halfH * winW / winH;
        Int32        col   = Int32(winW * (0.5f + 0.5f * x / halfW));
        Int32        row   = Int32(winH * (0.5f + 0.5f * y / halfH));
        return px[row * winW + col];
    }

    NodePtr stage;
};

} // namespace corestest

#endif

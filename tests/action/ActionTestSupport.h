// Scene building and GL helpers shared by the action tests.
#ifndef _ACTIONTESTSUPPORT_H_
#define _ACTIONTESTSUPPORT_H_

#include "OSGActionTestCore.h"
#include "OSGRecordMaterial.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGTransform.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace actiontest
{

using namespace osg;

/// Holds references to everything a test builds and releases them at the end.
class Scene
{
  public:
    ~Scene(void) { clear(); }

    void clear(void)
    {
        for(FieldContainerPtr &p : _held)
            subRefCP(p);
        _held.clear();
    }

    NodePtr node(NodeCorePtr core, std::initializer_list<NodePtr> children = {})
    {
        NodePtr n = Node::create();
        beginEditCP(n);
        n->setCore(core);
        for(const NodePtr &c : children)
            n->addChild(c);
        endEditCP(n);
        return n;
    }

    /// A node that keeps itself alive until the end of the test.
    NodePtr root(NodePtr n)
    {
        hold(n);
        return n;
    }

    NodePtr group(std::initializer_list<NodePtr> children = {})
    {
        return node(Group::create(), children);
    }

    NodePtr transform(const Matrix &m, std::initializer_list<NodePtr> children = {})
    {
        TransformPtr t = Transform::create();
        beginEditCP(t, Transform::MatrixFieldMask);
        t->setMatrix(m);
        endEditCP(t, Transform::MatrixFieldMask);
        return node(t, children);
    }

    NodePtr translate(Real32 x, Real32 y, Real32 z, std::initializer_list<NodePtr> children = {})
    {
        Matrix m;
        m.setTranslate(x, y, z);
        return transform(m, children);
    }

    /// A recording drawable with the material.
    NodePtr draw(const std::string &label, MaterialPtr mat,
                 std::initializer_list<NodePtr> children = {})
    {
        ActionTestCorePtr core = ActionTestCore::create();
        beginEditCP(core);
        core->setLabel(label);
        core->setMaterial(mat);
        endEditCP(core);
        return node(core, children);
    }

    RecordMaterialPtr material(const std::string &label, Int32 sortKey = 0,
                               bool transparent = false, UInt32 passes = 1)
    {
        RecordMaterialPtr m = RecordMaterial::create();
        beginEditCP(m);
        m->setLabel(label);
        m->setSortKey(sortKey);
        m->setTransparent(transparent);
        m->setPasses(passes);
        endEditCP(m);
        hold(m);
        return m;
    }

    void hold(const FieldContainerPtr &p)
    {
        addRefCP(p);
        _held.push_back(p);
    }

  private:
    std::vector<FieldContainerPtr> _held;
};

/// The log without the traversal's RE:/RL: entries: what the draw phase did.
inline std::string drawLog(void)
{
    std::string s;
    for(const std::string &e : actionTestLog())
    {
        if(e.compare(0, 3, "RE:") == 0 || e.compare(0, 3, "RL:") == 0)
            continue;
        if(!s.empty())
            s += ' ';
        s += e;
    }
    return s;
}

/// One headless GL context for the whole test program.
inline HeadlessGLContext *glContext(void)
{
    static std::unique_ptr<HeadlessGLContext> ctx;
    static bool                               tried = false;
    if(!tried)
    {
        tried = true;
        if(HeadlessGLContext::isAvailable())
        {
            ctx.reset(new HeadlessGLContext);
            if(!ctx->init(64, 64))
                ctx.reset();
        }
    }
    if(ctx)
        ctx->makeCurrent();
    return ctx.get();
}

#define REQUIRE_GL()                                                         \
    if(actiontest::glContext() == NULL)                                      \
    GTEST_SKIP() << "no OpenGL context on this machine"

inline ::testing::AssertionResult matrixNear(const Matrix &a, const Matrix &b,
                                             Real32 tol = 1e-4f)
{
    if(a.equals(b, tol))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "matrices differ:\n" << a << "\nvs\n" << b;
}

} // namespace actiontest

#endif

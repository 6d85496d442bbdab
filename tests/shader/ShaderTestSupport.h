// What the shader tests share: a window whose camera sits at the origin and
// looks down -z, planes in front of it, directional lights, and a count of
// the plain SHLChunks alive (the permutations a PermutationSHLChunk made).
#ifndef _SHADERTESTSUPPORT_H_
#define _SHADERTESTSUPPORT_H_

#include "window/WindowTestSupport.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleGeometry.h>

#include <cmath>
#include <cstdlib>

namespace shadertest
{

using namespace osg;
using namespace wintest;

/// The plain SHLChunks alive, the prototype included.
inline UInt32 countSHLChunks(void)
{
    const FieldContainerFactory::FieldContainerStore *store =
        FieldContainerFactory::the()->getFieldContainerStore();
    UInt32 n = 0;
    for(const FieldContainerPtr &fc : *store)
        if(fc != NullFC && fc->getType() == SHLChunk::getClassType())
            ++n;
    return n;
}

/// The plain SHLChunk made last.
inline SHLChunkPtr newestSHLChunk(void)
{
    const FieldContainerFactory::FieldContainerStore *store =
        FieldContainerFactory::the()->getFieldContainerStore();
    for(size_t i = store->size(); i-- > 0;)
        if((*store)[i] != NullFC && (*store)[i]->getType() == SHLChunk::getClassType())
            return SHLChunkPtr::dcast((*store)[i]);
    return SHLChunkPtr();
}

inline bool near(const RGBA &a, const RGBA &b, int tolerance)
{
    return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance &&
           std::abs(a.b - b.b) <= tolerance && std::abs(a.a - b.a) <= tolerance;
}

/// The frame fixture with one port over the whole window (grey
/// background); the camera has a vertical field of 1 radian.
class ShaderFrame : public FrameFixture
{
  protected:
    void SetUp(void) override
    {
        FrameFixture::SetUp();
        if(IsSkipped())
            return;
        mainPort = port(0.f, 1.f, 0.f, 1.f, solid(Grey));

        content = Node::create();
        keep(content);
        beginEditCP(content);
        content->setCore(Group::create());
        endEditCP(content);
        beginEditCP(root);
        root->addChild(content);
        endEditCP(root);
    }

    /// A plane of w x h centred at (x, y, z), facing +z, with texture
    /// coordinates from 0 at its lower left to 1 at its upper right.
    NodePtr addPlane(const MaterialPtr &material, Real32 x = 0.f, Real32 z = -2.f,
                     Real32 w = 4.f, Real32 h = 4.f)
    {
        GeometryPtr geo = makePlaneGeo(w, h, 1, 1);
        beginEditCP(geo);
        geo->setMaterial(material);
        endEditCP(geo);
        NodePtr plane = Node::create();
        beginEditCP(plane);
        plane->setCore(geo);
        endEditCP(plane);

        TransformPtr move = Transform::create();
        Matrix       m;
        m.setTranslate(x, 0.f, z);
        beginEditCP(move);
        move->setMatrix(m);
        endEditCP(move);
        NodePtr placed = Node::create();
        beginEditCP(placed);
        placed->setCore(move);
        placed->addChild(plane);
        endEditCP(placed);

        beginEditCP(content);
        content->addChild(placed);
        endEditCP(content);
        return placed;
    }

    /// Adds a directional light that shines from `towards` (towards the
    /// light, in eye space: the camera's beacon is the identity). Lights
    /// stand above the planes, as a light whose subtree is empty would be
    /// culled.
    DirectionalLightPtr addLight(const Vec3f &towards = Vec3f(0.f, 0.f, 1.f),
                                 const Color4f &diffuse  = Color4f(1.f, 1.f, 1.f, 1.f),
                                 const Color4f &ambient  = Color4f(0.f, 0.f, 0.f, 1.f),
                                 const Color4f &specular = Color4f(1.f, 1.f, 1.f, 1.f))
    {
        DirectionalLightPtr light = DirectionalLight::create();
        beginEditCP(light);
        light->setDirection(towards);
        light->setDiffuse(diffuse);
        light->setAmbient(ambient);
        light->setSpecular(specular);
        light->setBeacon(root);
        endEditCP(light);
        NodePtr top  = root->getChild(0);
        NodePtr node = Node::create();
        addRefCP(top);
        beginEditCP(root);
        root->subChild(top);
        endEditCP(root);
        beginEditCP(node);
        node->setCore(light);
        node->addChild(top);
        endEditCP(node);
        subRefCP(top);
        beginEditCP(root);
        root->addChild(node);
        endEditCP(root);
        lights.push_back(node);
        return light;
    }

    /// Exactly n lights from the camera's side.
    void setLightCount(UInt32 n)
    {
        while(lights.size() > n)
        {
            // the last light is the top one
            NodePtr top   = lights.back();
            NodePtr below = top->getChild(0);
            addRefCP(below);
            beginEditCP(top);
            top->subChild(below);
            endEditCP(top);
            beginEditCP(root);
            root->subChild(top);
            root->addChild(below);
            endEditCP(root);
            subRefCP(below);
            lights.pop_back();
        }
        while(lights.size() < n)
            addLight();
    }

    /// A material with the given chunks, kept by the test.
    ChunkMaterialPtr material(std::initializer_list<StateChunkPtr> chunks)
    {
        ChunkMaterialPtr mat = ChunkMaterial::create();
        keep(mat);
        beginEditCP(mat);
        for(const StateChunkPtr &c : chunks)
            mat->addChunk(c);
        endEditCP(mat);
        return mat;
    }

    RGBA pixel(UInt32 x, UInt32 y)
    {
        RGBA c;
        EXPECT_TRUE(win->readPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, &c));
        return c;
    }

    /// The eye-space point of the plane at depth z seen at pixel (x, y).
    Vec3f eyePoint(UInt32 x, UInt32 y, Real32 z = -2.f) const
    {
        Real32 t  = std::tan(0.5f);
        Real32 nx = (2.f * (Real32(x) + 0.5f) / winW - 1.f) * t * Real32(winW) / winH;
        Real32 ny = (2.f * (Real32(y) + 0.5f) / winH - 1.f) * t;
        return Vec3f(-nx * z, -ny * z, z);
    }

    ViewportPtr          mainPort;
    NodePtr              content; ///< the planes, under the lights
    std::vector<NodePtr> lights;
};

} // namespace shadertest

#endif

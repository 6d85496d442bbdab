// Chunk materials in whole frames of the render action: per-object shader
// uniforms between objects that share one state, and texture units.
#include "StateGLSupport.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMatrixCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

#include <memory>

using namespace osg;
using namespace statetest;

namespace
{
/// Whole frames through a viewport whose camera maps world coordinates
/// straight to clip coordinates.
class RenderPipelineGL : public GLTest
{
  protected:
    void SetUp(void) override
    {
        GLTest::SetUp();
        if(win == NullFC)
            return;

        root = keep(Node::create());
        beginEditCP(root);
        root->setCore(Group::create());
        endEditCP(root);

        MatrixCameraPtr camera = keep(MatrixCamera::create());
        SolidBackgroundPtr bg  = keep(SolidBackground::create());

        port = keep(Viewport::create());
        beginEditCP(port);
        port->setSize(0, 0, 1, 1);
        port->setCamera(camera);
        port->setRoot(root);
        port->setBackground(bg);
        endEditCP(port);
        win->addPort(port);

        render.reset(RenderAction::create());
    }

    void TearDown(void) override
    {
        if(win != NullFC)
        {
            win->subPort(port);
            for(UInt32 i = owned.size(); i-- > 0;)
                subRefCP(owned[i]);
            render.reset();
        }
        GLTest::TearDown();
    }

    template <class PtrT>
    PtrT keep(const PtrT &p)
    {
        addRefCP(p);
        owned.push_back(p);
        return p;
    }

    /// A size x size plane at (x, y) drawn with mat.
    void addPlane(Real32 x, Real32 y, Real32 size, const MaterialPtr &mat)
    {
        NodePtr     plane = makePlane(size, size, 1, 1);
        GeometryPtr geo   = GeometryPtr::dcast(plane->getCore());
        beginEditCP(geo, Geometry::MaterialFieldMask);
        geo->setMaterial(mat);
        endEditCP(geo, Geometry::MaterialFieldMask);

        TransformPtr xform = Transform::create();
        Matrix       m;
        m.setTranslate(x, y, 0);
        beginEditCP(xform);
        xform->setMatrix(m);
        endEditCP(xform);

        NodePtr node = Node::create();
        beginEditCP(node);
        node->setCore(xform);
        node->addChild(plane);
        endEditCP(node);

        beginEditCP(root);
        root->addChild(node);
        endEditCP(root);
    }

    NodePtr                       root;
    ViewportPtr                   port;
    std::unique_ptr<RenderAction> render;
    std::vector<FieldContainerPtr> owned;
};
} // namespace

TEST_F(RenderPipelineGL, ObjectsSharingAShaderStateSeeTheirOwnWorldMatrix)
{
    SHLChunkPtr shl = keep(SHLChunk::create());
    beginEditCP(shl);
    shl->setFragmentProgram("uniform mat4 OSGWorldMatrix;\n"
                            "void main()\n"
                            "{\n"
                            "    float x = OSGWorldMatrix[3][0];\n"
                            "    gl_FragColor = x > 0.0 ? vec4(1.0, 0.0, 0.0, 1.0)\n"
                            "                           : vec4(0.0, 1.0, 0.0, 1.0);\n"
                            "}\n");
    shl->setUniformParameter("OSGWorldMatrix", Matrix());
    endEditCP(shl);

    ChunkMaterialPtr mat = keep(ChunkMaterial::create());
    beginEditCP(mat, ChunkMaterial::ChunksFieldMask);
    mat->addChunk(shl);
    endEditCP(mat, ChunkMaterial::ChunksFieldMask);

    addPlane(-0.5f, 0.f, 0.8f, mat);
    addPlane(0.5f, 0.f, 0.8f, mat);

    win->render(render.get());
    writePNG("world_matrix");

    // one state for both planes: only update() tells them apart
    EXPECT_EQ(pixel(16, 32), (RGBA{0, 255, 0, 255}));
    EXPECT_EQ(pixel(48, 32), (RGBA{255, 0, 0, 255}));
    EXPECT_EQ(pixel(32, 4), (RGBA{0, 0, 0, 255}));   // background between them
}

// TexGenChunk and TextureTransformChunk: quads drawn with the coordinate
// texture (texel (x, y) is red x, green y). The CPU computes the
// coordinates from the generation formulas (object-linear, eye-linear with
// and without a beacon, sphere map at a known normal) or from the texture
// matrix, and the pixels must agree.
#include "TextureCoordinateScene.h"

#include <OpenSG/OSGTexGenChunk.h>
#include <OpenSG/OSGTextureTransformChunk.h>
#include <OpenSG/OSGTransformChunk.h>

using namespace osg;
using namespace geometrytest;
using namespace texcoordtest;

TEST(TexGenChunk, LinearFunctionsUseObjectEyeAndBeaconSpace)
{
    RenderScene s;
    NEED_GL(s);

    TexGenChunkPtr gen = TexGenChunk::create();
    beginEditCP(gen);
    gen->setGenFuncS(GL_OBJECT_LINEAR);
    gen->setGenFuncT(GL_OBJECT_LINEAR);
    gen->setGenFuncSPlane(Vec4f(0.25f, 0, 0, 0.5f));
    gen->setGenFuncTPlane(Vec4f(0, 0.5f, 0, 0.25f));
    endEditCP(gen);

    // the quad's object space is the window's halved and moved right
    addToRoot(s, placedQuad(2, 2, Vec3f(0.25f, 0, 0), 0.5f, texturedMaterial(coordinateTexture(), gen)));

    // a beacon elsewhere in the graph
    TransformPtr beaconCore = Transform::create();
    Matrix       bm;
    bm.setTranslate(0.5f, 0.25f, 0);
    beginEditCP(beaconCore, Transform::MatrixFieldMask);
    beaconCore->setMatrix(bm);
    endEditCP(beaconCore, Transform::MatrixFieldMask);
    NodePtr beacon = makeNodeFor(beaconCore);
    addToRoot(s, beacon);

    std::vector<UInt8> img = s.render();
    UInt32 n = expectTexels(img,
                            [](Real32 x, Real32 y, Real32 &u, Real32 &v) {
                                if(!inside(x, y, -0.25f, -0.5f, 0.75f, 0.5f))
                                    return false;
                                const Real32 ox = (x - 0.25f) / 0.5f, oy = y / 0.5f;
                                u = 0.25f * ox + 0.5f;
                                v = 0.5f * oy + 0.25f;
                                return true;
                            },
                            1, "object-linear");
    EXPECT_GT(n, 600u);

    // eye-linear without a beacon: the plane is in eye space
    beginEditCP(gen, TexGenChunk::GenFuncSFieldMask | TexGenChunk::GenFuncTFieldMask);
    gen->setGenFuncS(GL_EYE_LINEAR);
    gen->setGenFuncT(GL_EYE_LINEAR);
    endEditCP(gen, TexGenChunk::GenFuncSFieldMask | TexGenChunk::GenFuncTFieldMask);
    img = s.render();
    expectTexels(img,
                 [](Real32 x, Real32 y, Real32 &u, Real32 &v) {
                     if(!inside(x, y, -0.25f, -0.5f, 0.75f, 0.5f))
                         return false;
                     u = 0.25f * x + 0.5f;
                     v = 0.5f * y + 0.25f;
                     return true;
                 },
                 1, "eye-linear");

    // with beacons the planes are in the beacon's space
    beginEditCP(gen, TexGenChunk::SBeaconFieldMask | TexGenChunk::TBeaconFieldMask);
    gen->setSBeacon(beacon);
    gen->setTBeacon(beacon);
    endEditCP(gen, TexGenChunk::SBeaconFieldMask | TexGenChunk::TBeaconFieldMask);
    img = s.render();
    expectTexels(img,
                 [](Real32 x, Real32 y, Real32 &u, Real32 &v) {
                     if(!inside(x, y, -0.25f, -0.5f, 0.75f, 0.5f))
                         return false;
                     u = 0.25f * (x - 0.5f) + 0.5f;
                     v = 0.5f * (y - 0.25f) + 0.25f;
                     return true;
                 },
                 1, "eye-linear in the beacon's space");

    EXPECT_EQ(std::string(gen->getClass()->getName()), "TexGen");
    EXPECT_EQ(gen->getClass()->getNumSlots(), 8);
}

TEST(TexGenChunk, SphereMapFollowsTheNormalAndTheViewDirection)
{
    RenderScene s;
    NEED_GL(s);

    TexGenChunkPtr gen = TexGenChunk::create();
    beginEditCP(gen);
    gen->setGenFuncS(GL_SPHERE_MAP);
    gen->setGenFuncT(GL_SPHERE_MAP);
    endEditCP(gen);

    // the whole window, half a unit in front of the eye, every normal tilted
    Vec3f normal(0.4f, -0.3f, 1);
    normal.normalize();
    addToRoot(s, tiltedQuad(normal, texturedMaterial(coordinateTexture(), gen)));

    std::vector<UInt8> img = s.render();
    // per vertex and interpolated over 1/8-unit cells: within two texels
    UInt32 n = expectTexels(img,
                            [&](Real32 x, Real32 y, Real32 &u, Real32 &v) {
                                sphereMap(Vec3f(x, y, -0.5f), normal, u, v);
                                return true;
                            },
                            2, "sphere map");
    EXPECT_EQ(n, W * H);
}

TEST(TextureTransformChunk, TextureMatrixScalesTheCoordinatesOfItsUnitOnly)
{
    RenderScene s;
    NEED_GL(s);

    TextureTransformChunkPtr tt = TextureTransformChunk::create();
    Matrix                   m;
    m.setTranslate(0.25f, 0.125f, 0);
    m.setScale(0.5f, 0.75f, 1);
    beginEditCP(tt);
    tt->setMatrix(m);
    endEditCP(tt);
    EXPECT_EQ(std::string(tt->getClass()->getName()), "TextureTransform");
    EXPECT_GT(TextureTransformChunk::getStaticClassId(), TextureChunk::getStaticClassId());

    // left half with the texture matrix, right half without: whichever is
    // drawn second must not see the other's texture matrix
    TextureChunkPtr tex = coordinateTexture();
    addToRoot(s, placedQuad(1, 2, Vec3f(-0.5f, 0, 0), 1, texturedMaterial(tex, tt)));
    addToRoot(s, placedQuad(1, 2, Vec3f(0.5f, 0, 0), 1, texturedMaterial(tex)));

    const Expectation rightHalf = [](Real32 x, Real32 y, Real32 &u, Real32 &v) {
        if(!inside(x, y, 0, -1, 1, 1))
            return false;
        u = x;
        v = (y + 1) / 2;
        return true;
    };

    std::vector<UInt8> img = s.render();
    expectTexels(img,
                 [](Real32 x, Real32 y, Real32 &u, Real32 &v) {
                     if(!inside(x, y, -1, -1, 0, 1))
                         return false;
                     u = 0.5f * (x + 1) + 0.25f;
                     v = 0.75f * (y + 1) / 2 + 0.125f;
                     return true;
                 },
                 1, "scaled and moved by the texture matrix");
    expectTexels(img, rightHalf, 1, "identity texture matrix");

    // a second frame: the matrix does not pile up or leak
    img = s.render();
    expectTexels(img, rightHalf, 1, "identity texture matrix, second frame");
}

TEST(TextureTransformChunk, CameraBeaconGivesTheCameraRotation)
{
    RenderScene s;
    NEED_GL(s);

    // the camera looks at the scene turned 30 degrees about z
    Matrix viewing;
    viewing.setRotate(Quaternion(Vec3f(0, 0, 1), Pi / 6));
    beginEditCP(s.cam);
    s.cam->setModelviewMatrix(viewing);
    endEditCP(s.cam);
    Matrix camToWorld;
    viewing.inverse(camToWorld);

    TextureTransformChunkPtr tt = TextureTransformChunk::create();
    Matrix                   ignored;
    ignored.setScale(3);
    beginEditCP(tt);
    tt->setMatrix(ignored);
    tt->setUseCameraBeacon(true);
    endEditCP(tt);

    addToRoot(s, placedQuad(2, 2, Vec3f(0, 0, 0), 1, texturedMaterial(coordinateTexture(), tt)));

    std::vector<UInt8> img = s.render();
    UInt32 n = expectTexels(img,
                            [&](Real32 x, Real32 y, Real32 &u, Real32 &v) {
                                Pnt3f w;
                                camToWorld.mult(Pnt3f(x, y, 0), w);
                                if(!inside(w[0], w[1], -1, -1, 1, 1))
                                    return false;
                                // the quad's own coordinates, turned
                                const Real32 s0 = (w[0] + 1) / 2, t0 = (w[1] + 1) / 2;
                                u = camToWorld[0][0] * s0 + camToWorld[1][0] * t0;
                                v = camToWorld[0][1] * s0 + camToWorld[1][1] * t0;
                                return true;
                            },
                            1, "camera rotation as texture matrix");
    EXPECT_GT(n, 2000u);
}

TEST(TextureTransformChunk, IsMultipliedOntoTheTextureChunksOwnCorrection)
{
    RenderScene s;
    NEED_GL(s);

    // the texture mirrors s by a matrix of its own: s' = 1 - s
    TextureChunkPtr flipped = coordinateTexture();
    beginEditCP(flipped);
    flipped->setScale(false);
    flipped->setNPOTMatrixScale(TextureChunk::XFlip_TT);
    endEditCP(flipped);

    TextureTransformChunkPtr tt = TextureTransformChunk::create();
    Matrix                   m;
    m.setTranslate(0.25f, 0.125f, 0);
    m.setScale(0.5f, 0.75f, 1);
    beginEditCP(tt);
    tt->setMatrix(m);
    endEditCP(tt);

    addToRoot(s, placedQuad(2, 2, Vec3f(0, 0, 0), 1, texturedMaterial(flipped, tt)));
    std::vector<UInt8> img = s.render();
    expectTexels(img,
                 [](Real32 x, Real32 y, Real32 &u, Real32 &v) {
                     if(!inside(x, y, -1, -1, 1, 1))
                         return false;
                     u = 1 - (0.5f * (x + 1) / 2 + 0.25f);
                     v = 0.75f * (y + 1) / 2 + 0.125f;
                     return true;
                 },
                 1, "flip after the texture matrix");
}

TEST(TransformChunk, MovesWhatItsMaterialDraws)
{
    RenderScene s;
    NEED_GL(s);

    TransformChunkPtr move = TransformChunk::create();
    Matrix            m;
    m.setTranslate(0.5f, -0.25f, 0);
    beginEditCP(move);
    move->setMatrix(m);
    endEditCP(move);
    EXPECT_EQ(std::string(move->getClass()->getName()), "Transform");

    GeometryPtr quad = greenQuad();
    SimpleMaterialPtr mat = SimpleMaterialPtr::dcast(quad->getMaterial());
    beginEditCP(mat);
    mat->addChunk(move);
    endEditCP(mat);
    s.add(quad);

    // the 32 x 32 quad moved by 16 pixels right and 8 down
    std::vector<UInt8> img = s.render();
    UInt32 box[4];
    EXPECT_EQ(countColor(img, 0, 255, 0, box), 32u * 32u);
    EXPECT_EQ(box[0], 32u);
    EXPECT_EQ(box[1], 8u);
    EXPECT_EQ(box[2], 63u);
    EXPECT_EQ(box[3], 39u);
}

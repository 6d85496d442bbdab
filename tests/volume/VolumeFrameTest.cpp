// The frame of a volume, end to end through the public API: ray entry
// points and directions from the position passes against the geometry of
// the camera, and the ray-cast picture against a CPU ray marcher written
// from the same formulas.
#include "VolumeFrameSupport.h"

#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGBasicVolumeShadingStyle.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/Transferfunction.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/VolumeNodeHandler.h>

#include <algorithm>
#include <cmath>

using namespace voltest;

namespace
{

/// Where the ray through pixel (px, py) of a W x H window enters and leaves
/// the box [-0.5, 0.5]^3, in unit-cube coordinates; false on a miss.
bool boxHit(const Pnt3f &eye, Real32 fovY, Int32 px, Int32 py, Int32 w, Int32 h, Vec3f &entry,
            Vec3f &exit)
{
    // camera looks along -z from eye
    const Real32 t = std::tan(fovY / 2.f);
    Vec3f        dir((2.f * (px + 0.5f) / w - 1.f) * t * w / h, (2.f * (py + 0.5f) / h - 1.f) * t,
                     -1.f);
    Real32 tmin = -1e30f, tmax = 1e30f;
    for(int i = 0; i < 3; ++i)
    {
        Real32 a = (-0.5f - eye[i]) / dir[i], b = (0.5f - eye[i]) / dir[i];
        tmin = std::max(tmin, std::min(a, b));
        tmax = std::min(tmax, std::max(a, b));
    }
    if(tmax <= tmin || tmax <= 0.f)
        return false;
    tmin = std::max(tmin, 0.f);
    for(int i = 0; i < 3; ++i)
    {
        entry[i] = eye[i] + tmin * dir[i] + 0.5f;
        exit[i]  = eye[i] + tmax * dir[i] + 0.5f;
    }
    return true;
}

/// Trilinear sample of 8-bit voxels at unit-cube position p, clamped at
/// the border, as GL_LINEAR with GL_CLAMP_TO_EDGE gives it.
Real32 sample(const UInt8 *v, Int32 n, const Vec3f &p)
{
    Real32 f[3];
    Int32  i0[3], i1[3];
    for(int a = 0; a < 3; ++a)
    {
        Real32 c = p[a] * n - 0.5f;
        Real32 fl = std::floor(c);
        f[a]  = c - fl;
        i0[a] = std::min(std::max(Int32(fl), 0), n - 1);
        i1[a] = std::min(std::max(Int32(fl) + 1, 0), n - 1);
    }
    auto at = [&](Int32 x, Int32 y, Int32 z) { return v[(z * n + y) * n + x] / 255.f; };
    Real32 r = 0.f;
    for(int k = 0; k < 8; ++k)
    {
        Real32 w = ((k & 1) ? f[0] : 1 - f[0]) * ((k & 2) ? f[1] : 1 - f[1]) *
                   ((k & 4) ? f[2] : 1 - f[2]);
        r += w * at((k & 1) ? i1[0] : i0[0], (k & 2) ? i1[1] : i0[1], (k & 4) ? i1[2] : i0[2]);
    }
    return r;
}

/// The 8-bit table looked up linearly, as a 1-D GL_LINEAR texture does.
Vec4f classify(const UInt8 *table, Real32 value)
{
    Real32 c  = value * 256.f - 0.5f;
    Real32 fl = std::floor(c);
    Real32 f  = c - fl;
    Int32  a  = std::min(std::max(Int32(fl), 0), 255), b = std::min(std::max(Int32(fl) + 1, 0), 255);
    Vec4f  out;
    for(int i = 0; i < 4; ++i)
        out[i] = ((1 - f) * table[4 * a + i] + f * table[4 * b + i]) / 255.f;
    return out;
}

enum Style
{
    DVR,
    LitDVR,
    MIP,
    XRay
};

/// Lights a premultiplied sample as the lit DVR shading does: normal from
/// central differences one texel apart, the sun along +z in the volume's
/// frame (the fixture's), white light, emissive 0.5, diffuse 0.75,
/// specular 1 with exponent 25. False where the gradient vanishes and the
/// normal is undefined.
bool light(const UInt8 *voxels, const Vec3f &pos, const Vec3f &dir, Vec4f &c)
{
    Vec3f normal;
    for(int a = 0; a < 3; ++a)
    {
        Vec3f offset(0.f, 0.f, 0.f);
        offset[a] = 1.f / N;
        normal[a] = -(sample(voxels, N, pos + offset) - sample(voxels, N, pos - offset)) / 6.f;
    }
    if(normal.length() < 1e-4f)
        return false;
    normal.normalize();
    const Vec3f toLight(0.f, 0.f, 1.f);
    Vec3f       half = toLight - dir;
    half.normalize();
    const Real32 ndotl = std::min(std::max(toLight.dot(normal), 1e-6f), 1.f);
    const Real32 ndoth = std::min(std::max(half.dot(normal), 1e-6f), 1.f);
    const Real32 specular = std::pow(ndoth, 25.f) * c[3];
    for(int i = 0; i < 3; ++i)
        c[i] = 0.5f * c[i] + 0.75f * c[i] * ndotl + specular;
    return true;
}

/// How far interleaved rays start behind the step grid at pixel (x, y):
/// a quarter step apart over each 2 x 2 block of pixels, from the
/// fragment's centre coordinates (x + 0.5, y + 0.5) taken modulo 2.
Real32 interleavedOffset(Int32 x, Int32 y, Real32 step)
{
    const Real32 mx = std::fmod(x + 0.5f, 2.f), my = std::fmod(y + 0.5f, 2.f);
    return (mx * 2.f + my) * step / 4.f;
}

/// The ray caster for one pixel, from its start and direction texels,
/// the ray started rayOffset further along; defined false where a lit
/// sample has no normal.
Vec3f marchPixel(const Vec4f &front, const Vec4f &back, const UInt8 *voxels, const UInt8 *table,
                 Real32 step, Style style, bool &defined, Real32 rayOffset = 0.f)
{
    defined = true;
    Vec4f out(0.f, 0.f, 0.f, 0.f);
    if(back[3] <= 0.f)
        return Vec3f(0.f, 0.f, 0.f);
    Vec3f  dir(back[0], back[1], back[2]);
    Vec3f  origin(front[0], front[1], front[2]);
    Real32 tnah = -1e30f;
    for(int i = 0; i < 3; ++i)
        tnah = std::max(tnah, std::min(-origin[i] / dir[i], (1.f - origin[i]) / dir[i]));
    Real32 q      = tnah / step;
    Real32 offset = q - std::floor(q);
    origin += dir * (offset * step - step + rayOffset);
    const Int32 numSteps = Int32((back[3] - rayOffset) / step);
    Vec3f       pos      = origin;
    bool        active   = true;
    for(Int32 k = 1; k <= 42 * 42 && active; ++k)
    {
        Real32 v = sample(voxels, N, pos);
        if(style == MIP)
        {
            out = Vec4f(1.f, 1.f, 1.f, std::max(out[3], v));
        }
        else if(style == XRay)
        {
            out = Vec4f(1.f, 1.f, 1.f, out[3] + step * 2.f * v);
        }
        else
        {
            Vec4f c = classify(table, v);
            if(c[3] > 0.f)
            {
                c[3] = 1.f - std::pow(1.f - c[3], step * 200.f);
                for(int i = 0; i < 3; ++i)
                    c[i] *= c[3];
                if(style == LitDVR)
                    defined = light(voxels, pos, dir, c) && defined;
                out += c * (1.f - out[3]);
                active = out[3] < 0.98f;
            }
        }
        pos += dir * step;
        active = active && k < numSteps;
    }
    // mixed over the black scene, clamped by the frame buffer
    Vec3f shown;
    for(int i = 0; i < 3; ++i)
        shown[i] = std::min(out[i] * out[3], 1.f);
    return shown;
}

} // namespace

class VolumeFrameTest : public VolumeFrame
{
  protected:
    void SetUp(void) override
    {
        VolumeFrame::SetUp();
        if(IsSkipped())
            return;
        beginEditCP(volume);
        volume->setVoxels(makeVoxels(N, N, N, ball));
        endEditCP(volume);
    }

    VolumeNodeHandler *handler(void) { return volume->getVolume(); }

    void setStyle(UInt32 type)
    {
        BasicVolumeShadingStylePtr style = BasicVolumeShadingStyle::create();
        beginEditCP(style);
        style->setShadingFuncType(type);
        endEditCP(style);
        beginEditCP(volume, VolumeNode::ShadingStyleFieldMask);
        volume->setShadingStyle(style);
        endEditCP(volume, VolumeNode::ShadingStyleFieldMask);
    }

    /// Renders the frame and compares every pixel with the CPU marcher.
    void expectMatchesReference(Style style, Real32 tolerance, bool interleaved = false)
    {
        render();
        render();
        std::vector<Vec4f> front = texels(handler()->getFrontTexture());
        std::vector<Vec4f> back  = texels(handler()->getBackTexture());
        std::vector<Vec4f> shown = frame();
        const UInt8 *voxels = handler()->getVolumeData()->getVolumeImage()->getData();
        const UInt8 *table =
            handler()->getTransferfunction()->getTFTextureChunk()->getImage()->getData();
        Real32 worst = 0.f;
        Int32  hits = 0, undefined = 0;
        for(Int32 i = 0; i < W * H; ++i)
        {
            bool  defined  = true;
            const Real32 step     = volume->getStepSize();
            const Real32 offset   = interleaved ? interleavedOffset(i % W, i / W, step) : 0.f;
            Vec3f        expected = marchPixel(front[i], back[i], voxels, table, step, style,
                                               defined, offset);
            if(!defined)
            {
                ++undefined;
                continue;
            }
            for(int c = 0; c < 3; ++c)
                worst = std::max(worst, std::fabs(expected[c] - shown[i][c]));
            hits += expected[0] > 0.05f;
        }
        EXPECT_GT(hits, W * H / 20) << "the volume should cover part of the window";
        EXPECT_LT(undefined, W * H / 100);
        EXPECT_LE(worst, tolerance);
    }
};

TEST_F(VolumeFrameTest, FirstFrameSetsUpAndSecondShowsTheVolume)
{
    render();
    ASSERT_NE(handler(), nullptr);
    EXPECT_EQ(volumeNode->getNChildren(), 1u);
    EXPECT_EQ(volumeNode->getChild(0), handler()->getRaycasterNode());
    std::vector<Vec4f> first = frame();
    EXPECT_LT(first[(H / 2) * W + W / 2][0], 0.01f) << "no pass runs on the first frame";
    render();
    std::vector<Vec4f> second = frame();
    EXPECT_GT(second[(H / 2) * W + W / 2][0], 0.1f);
}

TEST_F(VolumeFrameTest, StartAndBackPassesGiveEntryPointsAndRays)
{
    render();
    render();
    std::vector<Vec4f> front = texels(handler()->getFrontTexture());
    std::vector<Vec4f> back  = texels(handler()->getBackTexture());
    Int32 inside = 0;
    for(Int32 y = 0; y < H; ++y)
        for(Int32 x = 0; x < W; ++x)
        {
            Vec3f       entry, exit;
            const Vec4f &f = front[y * W + x], &b = back[y * W + x];
            if(!boxHit(Pnt3f(0.f, 0.f, 4.f), osgdegree2rad(40.f), x, y, W, H, entry, exit))
            {
                EXPECT_EQ(f[3], 0.f) << x << "," << y;
                EXPECT_EQ(b[3], 0.f) << x << "," << y;
                continue;
            }
            // pixels on the silhouette may go either way
            Vec3f d = exit - entry;
            if(d.length() < 0.05f)
                continue;
            ++inside;
            EXPECT_NEAR(f[0], entry[0], 2e-3f);
            EXPECT_NEAR(f[1], entry[1], 2e-3f);
            EXPECT_NEAR(f[2], entry[2], 2e-3f);
            EXPECT_NEAR(b[3], d.length(), 2e-3f);
            d.normalize();
            EXPECT_NEAR(b[0] * d[0] + b[1] * d[1] + b[2] * d[2], 1.f, 1e-4f);
        }
    EXPECT_GT(inside, 100);
}

TEST_F(VolumeFrameTest, CameraInsideTheVolumeStartsRaysOnTheNearPlane)
{
    lookFrom(Pnt3f(0.f, 0.f, 0.2f), Pnt3f(0.f, 0.f, -1.f));
    render();
    render();
    std::vector<Vec4f> front = texels(handler()->getFrontTexture());
    std::vector<Vec4f> back  = texels(handler()->getBackTexture());
    const Vec4f &f = front[(H / 2) * W + W / 2], &b = back[(H / 2) * W + W / 2];
    // near plane 0.5 in front of the eye at z = 0.2: unit-cube z 0.2
    EXPECT_NEAR(f[2], 0.2f, 1e-3f);
    EXPECT_EQ(f[3], 1.f);
    EXPECT_NEAR(b[3], 0.2f, 1e-3f) << "the ray runs from the near plane to the back face";
}

TEST_F(VolumeFrameTest, SceneSurfacesCutTheRays)
{
    // an opaque quad at z = 0 halfway through the volume, over the left half
    NodePtr plane = makePlane(0.5f, 1.f, 1, 1);
    TransformPtr t = Transform::create();
    Matrix m;
    m.setTranslate(-0.25f, 0.f, 0.f);
    beginEditCP(t);
    t->setMatrix(m);
    endEditCP(t);
    NodePtr placedPlane = makeNode(t);
    addChild(placedPlane, plane);
    addChild(root, placedPlane);

    render();
    render();
    std::vector<Vec4f> back = texels(handler()->getBackTexture());
    const Real32 left  = back[(H / 2) * W + W / 2 - 4][3];
    const Real32 right = back[(H / 2) * W + W / 2 + 4][3];
    EXPECT_NEAR(left, 0.5f, 0.01f) << "cut at the plane, halfway";
    EXPECT_NEAR(right, 1.0f, 0.02f) << "the whole depth of the box";

    // the same plane in front of the volume leaves no ray
    m.setTranslate(-0.25f, 0.f, 0.8f);
    beginEditCP(t);
    t->setMatrix(m);
    endEditCP(t);
    render();
    back = texels(handler()->getBackTexture());
    EXPECT_EQ(back[(H / 2) * W + W / 2 - 4][3], 0.f);
}

TEST_F(VolumeFrameTest, DVRMatchesTheCPURayMarcher)
{
    expectMatchesReference(DVR, 0.01f);
}

TEST_F(VolumeFrameTest, LitDVRMatchesTheCPURayMarcher)
{
    BasicVolumeShadingStylePtr style = BasicVolumeShadingStyle::create();
    beginEditCP(style);
    style->setShadingFuncType(0);
    style->setLighting(true);
    endEditCP(style);
    beginEditCP(volume, VolumeNode::ShadingStyleFieldMask);
    volume->setShadingStyle(style);
    endEditCP(volume, VolumeNode::ShadingStyleFieldMask);
    expectMatchesReference(LitDVR, 0.01f);
}

TEST_F(VolumeFrameTest, MIPMatchesTheCPURayMarcher)
{
    setStyle(1);
    expectMatchesReference(MIP, 0.01f);
}

TEST_F(VolumeFrameTest, XRayMatchesTheCPURayMarcher)
{
    setStyle(2);
    expectMatchesReference(XRay, 0.01f);
}

TEST_F(VolumeFrameTest, InterleavedRaysStartAQuarterStepApartInEachPixelBlock)
{
    // one bright layer of voxels across the view (clear of the sides, where
    // the texture's border handling would count) and steps of 1.6 voxels:
    // how near a sample comes to the layer depends on where its ray starts
    const auto layer = [](Int32 x, Int32 y, Int32 z) {
        return UInt8(z == 8 && x >= 2 && x < N - 2 && y >= 2 && y < N - 2 ? 255 : 0);
    };
    beginEditCP(volume, VolumeNode::VoxelsFieldMask | VolumeNode::RayGenTypeFieldMask |
                            VolumeNode::StepSizeFieldMask);
    volume->setVoxels(makeVoxels(N, N, N, layer));
    volume->setRayGenType(2);
    volume->setStepSize(0.1f);
    endEditCP(volume, VolumeNode::VoxelsFieldMask | VolumeNode::RayGenTypeFieldMask |
                          VolumeNode::StepSizeFieldMask);
    setStyle(1);
    expectMatchesReference(MIP, 0.01f, true);
}

TEST_F(VolumeFrameTest, BlockSkippingAndInterleavedRaysKeepThePicture)
{
    render();
    render();
    std::vector<Vec4f> simple = frame();
    beginEditCP(volume, VolumeNode::TraversalTypeFieldMask);
    volume->setTraversalType(2);
    endEditCP(volume, VolumeNode::TraversalTypeFieldMask);
    render();
    std::vector<Vec4f> skipping = frame();
    beginEditCP(volume, VolumeNode::RayGenTypeFieldMask);
    volume->setRayGenType(2);
    endEditCP(volume, VolumeNode::RayGenTypeFieldMask);
    render();
    std::vector<Vec4f> interleaved = frame();
    Real32 worstSkip = 0.f, worstInterleaved = 0.f;
    for(Int32 i = 0; i < W * H; ++i)
        for(int c = 0; c < 3; ++c)
        {
            worstSkip        = std::max(worstSkip, std::fabs(simple[i][c] - skipping[i][c]));
            worstInterleaved = std::max(worstInterleaved, std::fabs(simple[i][c] - interleaved[i][c]));
        }
    EXPECT_LE(worstSkip, 0.03f);
    EXPECT_LE(worstInterleaved, 0.08f);
}

TEST_F(VolumeFrameTest, OpaqueMeshOccludesWhateverTheOrderOfTheScene)
{
    NodePtr ball = makeSphere(3, 0.2f);
    SimpleMaterialPtr red = SimpleMaterial::create();
    beginEditCP(red);
    red->setDiffuse(Color3f(1.f, 0.f, 0.f));
    red->setLit(false);
    endEditCP(red);
    GeometryPtr geo = GeometryPtr::dcast(ball->getCore());
    beginEditCP(geo);
    geo->setMaterial(red);
    endEditCP(geo);
    TransformPtr t = Transform::create();
    Matrix m;
    m.setTranslate(0.f, 0.f, 0.6f);
    beginEditCP(t);
    t->setMatrix(m);
    endEditCP(t);
    NodePtr front = makeNode(t);
    addChild(front, ball);
    addChild(root, front);
    render();
    render();
    std::vector<Vec4f> after = frame();
    EXPECT_GT(after[(H / 2) * W + W / 2][0], 0.9f) << "the mesh in front of the volume is red";
    EXPECT_LT(after[(H / 2) * W + W / 2][1], 0.05f);

    // the volume listed after the mesh: the same picture
    addRefCP(volumeNode);
    beginEditCP(root, Node::ChildrenFieldMask);
    root->subChild(volumeNode);
    root->addChild(volumeNode);
    endEditCP(root, Node::ChildrenFieldMask);
    subRefCP(volumeNode);
    render();
    std::vector<Vec4f> before = frame();
    for(Int32 i = 0; i < W * H; ++i)
        for(int c = 0; c < 3; ++c)
            ASSERT_NEAR(after[i][c], before[i][c], 1e-6f) << i;
}

TEST_F(VolumeFrameTest, TextureUnitsFollowTheTexturesPresent)
{
    render();
    SHLChunkPtr shader = handler()->getRaycastingShader();
    Int32       unit   = -1;
    const char *names[] = {"volume", "frontTexture", "backTexture", "sceneColor", "sceneDepth"};
    for(Int32 i = 0; i < 5; ++i)
    {
        ASSERT_TRUE(shader->getUniformParameter(names[i], unit));
        EXPECT_EQ(unit, i) << names[i];
    }
    ASSERT_TRUE(shader->getUniformParameter("transferFunction", unit));
    EXPECT_EQ(unit, 5);

    TextureChunkPtr none = NullFC, back = handler()->getBackTexture();
    handler()->setFrontAndBackTexture(none, back);
    EXPECT_TRUE(shader->getUniformParameter("backTexture", unit));
    EXPECT_EQ(unit, 1);
    EXPECT_TRUE(shader->getUniformParameter("transferFunction", unit));
    EXPECT_EQ(unit, 4);
}

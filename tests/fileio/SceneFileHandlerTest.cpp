// Scene files through SceneFileHandler: files written here byte by byte in
// each format's documented layout load with the vertices, indices,
// normals, colours, materials and transforms written; scenes built through
// the API survive a write and a read; bad and oversized files give one
// warning and no scene.
#include "MeshTestSupport.h"

#include <OpenSG/OSGGeoPropPtrs.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>

#include <support/ZlibSupport.h>

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <sstream>
#include <sys/stat.h>

using namespace osg;
using namespace meshtest;

namespace
{

// --- the cube: 8 corners, a face per axis direction, two triangles a face ----

struct CubeFace
{
    Int32 n[3], u[3], v[3]; // normal and the two axes, u x v = n
};

const CubeFace cubeFaces[6] = {
    {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},  {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
    {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}},  {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
    {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},  {{0, 0, -1}, {0, 1, 0}, {1, 0, 0}}};

/// The OBJ index (1-based) of corner (x, y, z), each -1 or 1.
Int32 cornerIndex(Int32 x, Int32 y, Int32 z)
{
    return 1 + (x > 0 ? 1 : 0) + (y > 0 ? 2 : 0) + (z > 0 ? 4 : 0);
}

/// Corner k (0..3, counter-clockwise seen from outside) of face f.
void faceCorner(const CubeFace &f, Int32 k, Int32 c[3])
{
    static const Int32 su[4] = {-1, 1, 1, -1}, sv[4] = {-1, -1, 1, 1};
    for(Int32 a = 0; a < 3; ++a)
        c[a] = f.n[a] + su[k] * f.u[a] + sv[k] * f.v[a];
}

/// A cube of edge 2 around the origin with normals and texture
/// coordinates, material "red" from cube.mtl.
std::string cubeOBJ(const std::string &mtllib = "cube.mtl")
{
    std::ostringstream os;
    os << "# a cube\nmtllib " << mtllib << "\n";
    for(Int32 i = 0; i < 8; ++i)
        os << "v " << ((i & 1) ? 1 : -1) << ' ' << ((i & 2) ? 1 : -1) << ' '
           << ((i & 4) ? 1 : -1) << "\n";
    os << "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";
    for(const CubeFace &f : cubeFaces)
        os << "vn " << f.n[0] << ' ' << f.n[1] << ' ' << f.n[2] << "\n";
    os << "usemtl red\n";
    for(Int32 fi = 0; fi < 6; ++fi)
    {
        Int32 idx[4];
        for(Int32 k = 0; k < 4; ++k)
        {
            Int32 c[3];
            faceCorner(cubeFaces[fi], k, c);
            idx[k] = cornerIndex(c[0], c[1], c[2]);
        }
        const Int32 tri[2][3] = {{0, 1, 2}, {0, 2, 3}};
        for(const auto &t : tri)
        {
            os << "f";
            for(Int32 k : t)
                os << ' ' << idx[k] << '/' << (k + 1) << '/' << (fi + 1);
            os << "\n";
        }
    }
    return os.str();
}

const char *cubeMTL = "newmtl red\nKd 1 0 0\nKa 0 0 0\nKs 0.5 0.5 0.5\nNs 20\n"
                      "Ke 1 0 0\nd 1\n";

/// The cube's triangles as worldTriangles gives them.
std::vector<Triangle> cubeTriangles(void)
{
    std::vector<Triangle> out;
    for(const CubeFace &f : cubeFaces)
    {
        Int32 c[4][3];
        for(Int32 k = 0; k < 4; ++k)
            faceCorner(f, k, c[k]);
        const Int32 tri[2][3] = {{0, 1, 2}, {0, 2, 3}};
        for(const auto &t : tri)
        {
            Corners p;
            for(Int32 k = 0; k < 3; ++k)
                for(Int32 a = 0; a < 3; ++a)
                    p[k][a] = Real32(c[t[k]][a]);
            out.push_back(canonicalTriangle(p));
        }
    }
    std::sort(out.begin(), out.end());
    return out;
}

/// The square (0,0,0) (1,0,0) (1,1,0) (0,1,0) as two triangles.
std::vector<Triangle> squareTriangles(void)
{
    std::vector<Triangle> out = {{0, 0, 0, 1, 0, 0, 1, 1, 0}, {0, 0, 0, 1, 1, 0, 0, 1, 0}};
    std::sort(out.begin(), out.end());
    return out;
}

const UInt8 squareColours[4][3] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};

/// The square in binary PLY with a colour per vertex.
std::string squarePLY(void)
{
    std::string out = "ply\nformat binary_little_endian 1.0\ncomment a square\n"
                      "element vertex 4\nproperty float x\nproperty float y\n"
                      "property float z\nproperty uchar red\nproperty uchar green\n"
                      "property uchar blue\nelement face 2\n"
                      "property list uchar int vertex_indices\nend_header\n";
    const Real32 p[4][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    for(Int32 i = 0; i < 4; ++i)
    {
        for(Real32 c : p[i])
            putRaw(out, c);
        out.append(reinterpret_cast<const char *>(squareColours[i]), 3);
    }
    const Int32 faces[2][3] = {{0, 1, 2}, {0, 2, 3}};
    for(const auto &f : faces)
    {
        putRaw(out, UInt8(3));
        for(Int32 i : f)
            putRaw(out, i);
    }
    return out;
}

const Real32 squareSTL[2][3][3] = {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}},
                                   {{0, 0, 0}, {1, 1, 0}, {0, 1, 0}}};

std::string squareSTLText(void)
{
    std::ostringstream os;
    os << "solid square\n";
    for(const auto &t : squareSTL)
    {
        os << "facet normal 0 0 1\n outer loop\n";
        for(const auto &v : t)
            os << "  vertex " << v[0] << ' ' << v[1] << ' ' << v[2] << "\n";
        os << " endloop\nendfacet\n";
    }
    os << "endsolid square\n";
    return os.str();
}

std::string squareSTLBinary(UInt32 announced = 2)
{
    std::string out(80, ' ');
    out.replace(0, 14, "binary square ");
    putRaw(out, announced);
    for(const auto &t : squareSTL)
    {
        putRaw(out, 0.f);
        putRaw(out, 0.f);
        putRaw(out, 1.f);
        for(const auto &v : t)
            for(Real32 c : v)
                putRaw(out, c);
        putRaw(out, UInt16(0));
    }
    return out;
}

/// One triangle (0,0,0) (1,0,0) (0,1,0) under node "child" (scale 2) under
/// node "parent" (translation 1, 2, 3): the JSON and its buffer.
const char *triangleGLTFJson(bool binary)
{
    return binary ? R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
"nodes":[{"name":"parent","translation":[1,2,3],"children":[1]},
         {"name":"child","scale":[2,2,2],"mesh":0}],
"meshes":[{"primitives":[{"attributes":{"POSITION":0},"indices":1}]}],
"buffers":[{"byteLength":44}],
"bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":36},
               {"buffer":0,"byteOffset":36,"byteLength":6}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3",
              "min":[0,0,0],"max":[1,1,0]},
             {"bufferView":1,"componentType":5123,"count":3,"type":"SCALAR"}]})"
                  : R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
"nodes":[{"name":"parent","translation":[1,2,3],"children":[1]},
         {"name":"child","scale":[2,2,2],"mesh":0}],
"meshes":[{"primitives":[{"attributes":{"POSITION":0},"indices":1}]}],
"buffers":[{"uri":"triangle.bin","byteLength":44}],
"bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":36},
               {"buffer":0,"byteOffset":36,"byteLength":6}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3",
              "min":[0,0,0],"max":[1,1,0]},
             {"bufferView":1,"componentType":5123,"count":3,"type":"SCALAR"}]})";
}

std::string triangleBuffer(void)
{
    std::string out;
    const Real32 p[9] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    for(Real32 c : p)
        putRaw(out, c);
    for(UInt16 i : {0, 1, 2})
        putRaw(out, i);
    out.append(2, '\0');
    return out;
}

std::string triangleGLB(void)
{
    std::string json = triangleGLTFJson(true);
    while(json.size() % 4 != 0)
        json += ' ';
    const std::string bin = triangleBuffer();
    std::string       out = "glTF";
    putRaw(out, UInt32(2));
    putRaw(out, UInt32(12 + 8 + json.size() + 8 + bin.size()));
    putRaw(out, UInt32(json.size()));
    out += "JSON" + json;
    putRaw(out, UInt32(bin.size()));
    out += std::string("BIN\0", 4) + bin;
    return out;
}

std::vector<Triangle> gltfTriangles(void)
{
    return {{1, 2, 3, 3, 2, 3, 1, 4, 3}};
}

NodePtr findNamed(const NodePtr &root, const std::string &name)
{
    std::vector<NodePtr> stack(1, root);
    while(!stack.empty())
    {
        NodePtr n = stack.back();
        stack.pop_back();
        const Char8 *s = getName(n);
        if(s != NULL && name == s)
            return n;
        for(UInt32 i = 0; i < n->getNChildren(); ++i)
            stack.push_back(n->getChild(i));
    }
    return NullFC;
}

SimpleMaterialPtr materialOf(const GeometryPtr &geo)
{
    return SimpleMaterialPtr::dcast(geo->getMaterial());
}

/// Restores the handler's budgets and path handler after each case.
class SceneFiles : public ::testing::Test
{
  protected:
    void TearDown(void) override
    {
        SceneFileHandler::the().setMaxTriangles(0);
        SceneFileHandler::the().setMaxFileBytes(0);
        SceneFileHandler::the().setPathHandler(NULL);
    }
};

} // namespace

// --- reading each format ----------------------------------------------------------

TEST_F(SceneFiles, OBJCubeWithNormalsTexCoordsAndMaterial)
{
    putFile(path("cube.obj"), cubeOBJ());
    putFile(path("cube.mtl"), cubeMTL);
    putFile(path("cube.obj.gz"), corvanetest::deflated(cubeOBJ(), true));

    for(const char *name : {"cube.obj", "cube.obj.gz"})
    {
        SCOPED_TRACE(name);
        std::string log;
        Held        root(readLogged(path(name), log));
        ASSERT_NE(root.node, NullFC);
        EXPECT_EQ(log, "");

        GeometryPtr geo = onlyGeometry(root.node);
        ASSERT_NE(geo, NullFC);
        EXPECT_EQ(worldTriangles(root.node), cubeTriangles());

        // a vertex for each distinct corner of a face: 6 x 4
        ASSERT_NE(geo->getNormals(), NullFC);
        ASSERT_NE(geo->getTexCoords(), NullFC);
        EXPECT_EQ(geo->getPositions()->getSize(), 24u);
        EXPECT_EQ(geo->getIndices()->getSize(), 36u);

        // every corner carries its face's normal (the one its winding gives)
        // and one of the four texture coordinates written
        for(TriangleIterator it(geo); !it.isAtEnd(); ++it)
        {
            Vec3f face = (it.getPosition(1) - it.getPosition(0))
                             .cross(it.getPosition(2) - it.getPosition(0));
            face.normalize();
            for(Int32 k = 0; k < 3; ++k)
            {
                EXPECT_LT((it.getNormal(k) - face).length(), 1e-5f);
                const Vec2f t = it.getTexCoords(k);
                EXPECT_TRUE((t[0] == 0 || t[0] == 1) && (t[1] == 0 || t[1] == 1));
            }
        }
        // the corner (1, 1, 1) of the +z face has texture coordinate (1, 1)
        for(TriangleIterator it(geo); !it.isAtEnd(); ++it)
        {
            for(Int32 k = 0; k < 3; ++k)
            {
                if(it.getPosition(k) == Pnt3f(1, 1, 1) && it.getNormal(k) == Vec3f(0, 0, 1))
                {
                    EXPECT_EQ(it.getTexCoords(k), Vec2f(1, 1));
                }
            }
        }

        SimpleMaterialPtr mat = materialOf(geo);
        ASSERT_NE(mat, NullFC);
        EXPECT_EQ(mat->getDiffuse(), Color3f(1, 0, 0));
        EXPECT_EQ(mat->getSpecular(), Color3f(0.5f, 0.5f, 0.5f));
        EXPECT_EQ(mat->getEmission(), Color3f(1, 0, 0));
        EXPECT_FLOAT_EQ(mat->getShininess(), 20.f);
        EXPECT_FLOAT_EQ(mat->getTransparency(), 0.f);
    }
}

TEST_F(SceneFiles, BinaryPLYWithVertexColours)
{
    putFile(path("square.ply"), squarePLY());

    std::string log;
    Held        root(readLogged(path("square.ply"), log));
    ASSERT_NE(root.node, NullFC);
    EXPECT_EQ(log, "");
    EXPECT_EQ(worldTriangles(root.node), squareTriangles());

    GeometryPtr geo = onlyGeometry(root.node);
    ASSERT_NE(geo, NullFC);
    EXPECT_EQ(geo->getPositions()->getSize(), 4u);
    EXPECT_EQ(geo->getIndices()->getSize(), 6u);
    GeoColors4fPtr colors = GeoColors4fPtr::dcast(geo->getColors());
    ASSERT_NE(colors, NullFC);
    ASSERT_NE(geo->getNormals(), NullFC);

    const Pnt3f corners[4] = {Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(1, 1, 0), Pnt3f(0, 1, 0)};
    for(UInt32 i = 0; i < 4; ++i)
    {
        const Pnt3f p = geo->getPositions()->getValue(i);
        const Int32 which = Int32(std::find(corners, corners + 4, p) - corners);
        ASSERT_LT(which, 4);
        const Color4f c = colors->getField()[i];
        EXPECT_EQ(c, Color4f(squareColours[which][0] / 255.f, squareColours[which][1] / 255.f,
                             squareColours[which][2] / 255.f, 1.f));
        // no normals in the file: they are computed, facing +z
        EXPECT_LT((geo->getNormals()->getValue(i) - Vec3f(0, 0, 1)).length(), 1e-5f);
    }
}

TEST_F(SceneFiles, STLTextAndBinary)
{
    putFile(path("square.stl"), squareSTLText());
    putFile(path("squareb.stl"), squareSTLBinary());
    putFile(path("square.stlb"), squareSTLBinary());

    for(const char *name : {"square.stl", "squareb.stl", "square.stlb"})
    {
        SCOPED_TRACE(name);
        std::string log;
        Held        root(readLogged(path(name), log));
        ASSERT_NE(root.node, NullFC);
        EXPECT_EQ(log, "");
        EXPECT_EQ(worldTriangles(root.node), squareTriangles());
        GeometryPtr geo = onlyGeometry(root.node);
        ASSERT_NE(geo, NullFC);
        ASSERT_NE(geo->getNormals(), NullFC);
        for(TriangleIterator it(geo); !it.isAtEnd(); ++it)
            for(Int32 k = 0; k < 3; ++k)
                EXPECT_EQ(it.getNormal(k), Vec3f(0, 0, 1));
    }
}

TEST_F(SceneFiles, OFFPolygonsBecomeTriangles)
{
    putFile(path("square.off"), "OFF\n# a square\n4 1 0\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n4 0 1 2 3\n");

    std::string log;
    Held        root(readLogged(path("square.off"), log));
    ASSERT_NE(root.node, NullFC);
    EXPECT_EQ(log, "");
    EXPECT_EQ(worldTriangles(root.node), squareTriangles());
}

TEST_F(SceneFiles, GLTFHierarchyAndTransforms)
{
    putFile(path("triangle.gltf"), triangleGLTFJson(false));
    putFile(path("triangle.bin"), triangleBuffer());
    putFile(path("triangle.glb"), triangleGLB());

    for(const char *name : {"triangle.gltf", "triangle.glb"})
    {
        SCOPED_TRACE(name);
        std::string log;
        Held        root(readLogged(path(name), log));
        ASSERT_NE(root.node, NullFC);
        EXPECT_EQ(log, "");
        EXPECT_EQ(worldTriangles(root.node), gltfTriangles());

        // the nodes keep their names and matrices, the mesh its own
        // coordinates
        NodePtr parent = findNamed(root.node, "parent");
        NodePtr child  = findNamed(root.node, "child");
        ASSERT_NE(parent, NullFC);
        ASSERT_NE(child, NullFC);
        EXPECT_EQ(child->getParent(), parent);
        Matrix t;
        t.setTranslate(1, 2, 3);
        EXPECT_TRUE(TransformPtr::dcast(parent->getCore())->getMatrix().equals(t, 1e-6f));
        Matrix s;
        s.setScale(2);
        EXPECT_TRUE(TransformPtr::dcast(child->getCore())->getMatrix().equals(s, 1e-6f));

        GeometryPtr geo = onlyGeometry(root.node);
        ASSERT_NE(geo, NullFC);
        EXPECT_EQ(geo->getPositions()->getValue(1), Pnt3f(1, 0, 0));
    }
}

TEST_F(SceneFiles, StreamsCompressedOrNot)
{
    SceneFileHandler &h = SceneFileHandler::the();

    for(bool gz : {false, true})
    {
        SCOPED_TRACE(gz);
        const std::string  ply = squarePLY();
        std::istringstream is(gz ? corvanetest::deflated(ply, true) : ply);
        Held               root(h.read(is, "ply"));
        ASSERT_NE(root.node, NullFC);
        EXPECT_EQ(worldTriangles(root.node), squareTriangles());
    }

    // the stream form reads no other file: the OBJ's material library is
    // not looked for, the cube still loads
    std::istringstream is(cubeOBJ());
    Held               root(h.read(is, "x.OBJ"));
    ASSERT_NE(root.node, NullFC);
    EXPECT_EQ(worldTriangles(root.node), cubeTriangles());
    EXPECT_NE(materialOf(onlyGeometry(root.node))->getDiffuse(), Color3f(1, 0, 0));
}

TEST_F(SceneFiles, FilesBesideTheSceneFile)
{
    // a diffuse texture beside the OBJ becomes a texture chunk
    const std::string dir = path("textured/");
    ::mkdir(dir.c_str(), 0755);
    ImagePtr img = Image::create();
    addRefCP(img);
    img->set(Image::OSG_RGB_PF, 2, 2);
    ASSERT_TRUE(ImageFileHandler::the().write(img, (dir + "tex.png").c_str()));
    subRefCP(img);
    putFile(dir + "cube.obj", cubeOBJ());
    putFile(dir + "cube.mtl", std::string(cubeMTL) + "map_Kd tex.png\n");

    {
        std::string log;
        Held        root(readLogged(dir + "cube.obj", log));
        ASSERT_NE(root.node, NullFC);
        EXPECT_EQ(log, "");
        SimpleMaterialPtr mat = materialOf(onlyGeometry(root.node));
        ASSERT_NE(mat, NullFC);
        TextureChunkPtr tex = TextureChunkPtr::dcast(mat->find(TextureChunk::getClassType()));
        ASSERT_NE(tex, NullFC);
        ASSERT_NE(tex->getImage(), NullFC);
        EXPECT_EQ(tex->getImage()->getWidth(), 2);
        EXPECT_EQ(mat->getDiffuse(), Color3f(1, 1, 1));
    }

    // a material library outside the file's folder is not read: one
    // warning, the mesh loads with the default material
    putFile(path("outside.mtl"), cubeMTL);
    putFile(dir + "escape.obj", cubeOBJ("../outside.mtl"));
    {
        std::string log;
        Held        root(readLogged(dir + "escape.obj", log));
        ASSERT_NE(root.node, NullFC);
        EXPECT_EQ(lineCount(log), 1u) << log;
        EXPECT_NE(log.find("outside"), std::string::npos) << log;
        EXPECT_NE(materialOf(onlyGeometry(root.node))->getDiffuse(), Color3f(1, 0, 0));
    }

    // a missing texture: one warning, drawn without it
    putFile(dir + "notex.obj", cubeOBJ("notex.mtl"));
    putFile(dir + "notex.mtl", std::string(cubeMTL) + "map_Kd gone.png\n");
    {
        std::string log;
        Held        root(readLogged(dir + "notex.obj", log));
        ASSERT_NE(root.node, NullFC);
        EXPECT_EQ(lineCount(log), 1u) << log;
        EXPECT_NE(log.find("gone.png"), std::string::npos) << log;
    }
}

TEST_F(SceneFiles, GLBWithAnEmbeddedTexture)
{
    // a 2 x 1 PNG (red, blue) inside the GLB's buffer, after the triangle
    ImagePtr img = Image::create();
    addRefCP(img);
    img->set(Image::OSG_RGB_PF, 2, 1);
    const UInt8 texels[6] = {255, 0, 0, 0, 0, 255};
    std::copy(texels, texels + 6, img->editData());
    std::ostringstream png;
    ASSERT_TRUE(ImageFileHandler::the().write(img, png, "png"));
    subRefCP(img);

    std::string bin = triangleBuffer();
    for(Real32 uv : {0.f, 0.f, 1.f, 0.f, 0.f, 1.f})
        putRaw(bin, uv);
    const size_t pngAt = bin.size();
    bin += png.str();
    while(bin.size() % 4 != 0)
        bin += '\0';

    std::string json =
        R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
"meshes":[{"primitives":[{"attributes":{"POSITION":0,"TEXCOORD_0":2},"indices":1,"material":0}]}],
"materials":[{"pbrMetallicRoughness":{"baseColorTexture":{"index":0}}}],
"textures":[{"source":0}],"images":[{"bufferView":3,"mimeType":"image/png"}],
"buffers":[{"byteLength":)" + std::to_string(bin.size()) + R"(}],
"bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":36},
               {"buffer":0,"byteOffset":36,"byteLength":6},
               {"buffer":0,"byteOffset":44,"byteLength":24},
               {"buffer":0,"byteOffset":)" + std::to_string(pngAt) + R"(,"byteLength":)" +
        std::to_string(png.str().size()) + R"(}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3",
              "min":[0,0,0],"max":[1,1,0]},
             {"bufferView":1,"componentType":5123,"count":3,"type":"SCALAR"},
             {"bufferView":2,"componentType":5126,"count":3,"type":"VEC2"}]})";
    while(json.size() % 4 != 0)
        json += ' ';
    std::string glb = "glTF";
    putRaw(glb, UInt32(2));
    putRaw(glb, UInt32(12 + 8 + json.size() + 8 + bin.size()));
    putRaw(glb, UInt32(json.size()));
    glb += "JSON" + json;
    putRaw(glb, UInt32(bin.size()));
    glb += std::string("BIN\0", 4) + bin;

    std::istringstream is(glb);
    LogCapture         log(LOG_WARNING);
    Held               root(SceneFileHandler::the().read(is, "glb"));
    EXPECT_EQ(log.take(), "");
    ASSERT_NE(root.node, NullFC);
    GeometryPtr geo = onlyGeometry(root.node);
    ASSERT_NE(geo, NullFC);
    ASSERT_NE(geo->getTexCoords(), NullFC);
    SimpleMaterialPtr mat = materialOf(geo);
    ASSERT_NE(mat, NullFC);
    TextureChunkPtr tex = TextureChunkPtr::dcast(mat->find(TextureChunk::getClassType()));
    ASSERT_NE(tex, NullFC);
    ImagePtr got = tex->getImage();
    ASSERT_NE(got, NullFC);
    ASSERT_EQ(got->getWidth(), 2);
    ASSERT_EQ(got->getHeight(), 1);
    EXPECT_TRUE(std::equal(texels, texels + 6, got->getData()));
}

TEST_F(SceneFiles, PathHandlerFindsRelativeNames)
{
    putFile(path("found.stl"), squareSTLText());

    PathHandler paths;
    paths.push_backPath(path("").c_str());
    SceneFileHandler::the().setPathHandler(&paths);
    Held root(SceneFileHandler::the().read("found.stl"));
    EXPECT_NE(root.node, NullFC);
}

// --- the registry -------------------------------------------------------------

TEST_F(SceneFiles, SuffixesAndTypes)
{
    SceneFileHandler &h = SceneFileHandler::the();

    std::list<const Char8 *> readable, both;
    const Int32 count = h.getSuffixList(readable, SceneFileType::OSG_READ_SUPPORTED);
    EXPECT_EQ(count, Int32(readable.size()));
    h.getSuffixList(both);

    const std::vector<std::string> r(readable.begin(), readable.end()), b(both.begin(), both.end());
    EXPECT_TRUE(std::is_sorted(r.begin(), r.end()));
    for(const char *s : {"glb", "gltf", "obj", "off", "ply", "stl", "stla", "stlb"})
        EXPECT_NE(std::find(r.begin(), r.end(), s), r.end()) << s;
    // OFF is read only
    EXPECT_EQ(std::find(b.begin(), b.end(), "off"), b.end());
    EXPECT_NE(std::find(b.begin(), b.end(), "obj"), b.end());

    EXPECT_NE(h.getFileType("obj"), nullptr);
    EXPECT_EQ(h.getFileType("dir.v2/Model.OBJ.gz"), h.getFileType("obj"));
    EXPECT_EQ(h.getFileType("a.stlb"), h.getFileType("stl"));
    EXPECT_EQ(h.getFileType("a.xyz"), nullptr);
    EXPECT_EQ(h.getFileType(NULL), nullptr);
    EXPECT_STREQ(h.getFileType("glb")->getName(), "glTF binary");

    // the default operations keep OpenSG's sequence
    GraphOpSeq *ops = SceneFileHandler::getDefaultGraphOp();
    ASSERT_NE(ops, nullptr);
    ASSERT_EQ(ops->size(), 2u);
    EXPECT_EQ(ops->getGraphOp(0)->getName(), "Stripe");
    EXPECT_EQ(ops->getGraphOp(1)->getName(), "SharePtr");
    EXPECT_EQ(ops->getGraphOp(1)->getParams(), "includes=Material,StateChunk");
}

// --- bad input: one warning, no scene -----------------------------------------

TEST_F(SceneFiles, FailuresLogOneLine)
{
    SceneFileHandler &h = SceneFileHandler::the();

    struct Case
    {
        std::string file, expected;
    };
    putFile(path("what.xyz"), "nothing");
    // announces 5 triangles, holds 2
    putFile(path("short.stl"), squareSTLBinary(5));
    putFile(path("broken.glb"), triangleGLB().substr(0, 60));
    putFile(path("deep.gltf"), std::string(100000, '['));
    putFile(path("noheader.ply"), "ply\nformat ascii 1.0\nelement vertex 3\n");
    putFile(path("claims.off"), "OFF\n4000000 4000000 0\n0 0 0\n");
    // a face of four billion corners: Assimp would size the list first
    putFile(path("longlist.ply"), "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\n"
                                  "property float y\nproperty float z\nelement face 1\n"
                                  "property list uint int vertex_indices\nend_header\n"
                                  "0 0 0\n1 0 0\n0 1 0\n4000000000 0 1 2\n");
    // a count glued to the name: Assimp would read billions of elements
    putFile(path("glued.ply"), "ply\nformat ascii 1.0\nelement 2222222222222vertex 3\n"
                               "property float x\nend_header\n0\n1\n2\n");
    putFile(path("bad.obj.gz"), std::string("\x1f\x8b\x08\x00garbage", 11));
    ::mkdir(path("folder.obj").c_str(), 0755);

    const Case cases[] = {
        {path("nothere.obj"), "Couldn't open file " + path("nothere.obj")},
        {path("what.xyz"), "could not read " + path("what.xyz") + "; unknown file format"},
        {path("short.stl"), "could not read " + path("short.stl") + "; "},
        {path("broken.glb"), "could not read " + path("broken.glb") + "; "},
        {path("deep.gltf"), "could not read " + path("deep.gltf") + "; JSON nested deeper"},
        {path("noheader.ply"), "could not read " + path("noheader.ply") + "; no end_header"},
        {path("glued.ply"), "could not read " + path("glued.ply") + "; a malformed header line"},
        {path("claims.off"), "could not read " + path("claims.off") + "; the header announces more"},
        {path("longlist.ply"), "could not read " + path("longlist.ply") + "; a list longer than"},
        {path("bad.obj.gz"), "could not read " + path("bad.obj.gz") + "; corrupt gzip data"},
        {path("folder.obj"), "volumeReadFile"},
    };

    for(const Case &c : cases)
    {
        SCOPED_TRACE(c.file);
        std::string log;
        EXPECT_EQ(readLogged(c.file, log), NullFC);
        EXPECT_EQ(lineCount(log), 1u) << log;
        EXPECT_NE(log.find(c.expected), std::string::npos) << log;
    }

    LogCapture log(LOG_WARNING);
    EXPECT_EQ(h.read(static_cast<const Char8 *>(NULL)), NullFC);
    EXPECT_NE(log.take().find("cannot read NULL file"), std::string::npos);
    std::istringstream is("v 0 0 0\n");
    EXPECT_EQ(h.read(is, "xyz"), NullFC);
    EXPECT_NE(log.take().find("could not read a stream of type 'xyz'; unknown file format"),
              std::string::npos);
    EXPECT_FALSE(h.write(NullFC, path("none.obj").c_str()));
    EXPECT_NE(log.take().find("no node"), std::string::npos);
}

TEST_F(SceneFiles, BudgetsRefuseWithOneLine)
{
    SceneFileHandler &h = SceneFileHandler::the();
    putFile(path("budget.obj"), cubeOBJ());
    putFile(path("budget.mtl"), cubeMTL);
    putFile(path("budget.stl"), squareSTLBinary());

    // the cube holds 12 triangles, the STL announces 2 in its header
    h.setMaxTriangles(11);
    EXPECT_EQ(h.getMaxTriangles(), 11u);
    std::string log;
    EXPECT_EQ(readLogged(path("budget.obj"), log), NullFC);
    EXPECT_EQ(lineCount(log), 1u) << log;
    EXPECT_NE(log.find("12 triangles and 24 vertices, more than the budget of 11 triangles"),
              std::string::npos) << log;
    h.setMaxTriangles(1);
    EXPECT_EQ(readLogged(path("budget.stl"), log), NullFC);
    EXPECT_EQ(lineCount(log), 1u) << log;
    EXPECT_NE(log.find("2 triangles, more than the budget of 1"), std::string::npos) << log;
    h.setMaxTriangles(0);
    EXPECT_EQ(h.getMaxTriangles(), SceneFileHandler::DefaultMaxTriangles);

    // a PLY header that announces a billion faces in a few bytes
    putFile(path("claims.ply"), "ply\nformat binary_little_endian 1.0\nelement vertex 3\n"
                                "property float x\nproperty float y\nproperty float z\n"
                                "element face 1000000000\n"
                                "property list uchar int vertex_indices\nend_header\n" +
                                    std::string(36, '\0'));
    EXPECT_EQ(readLogged(path("claims.ply"), log), NullFC);
    EXPECT_EQ(lineCount(log), 1u) << log;
    EXPECT_NE(log.find("1000000000 faces, more than the budget"), std::string::npos) << log;
    h.setMaxTriangles(UInt64(1) << 40);
    EXPECT_EQ(readLogged(path("claims.ply"), log), NullFC);
    EXPECT_EQ(lineCount(log), 1u) << log;
    EXPECT_NE(log.find("the header announces"), std::string::npos) << log;
    h.setMaxTriangles(0);

    // a gzip bomb: 64 MiB of text from a few kilobytes, stopped at the byte
    // budget, from a file and from a stream
    std::string text;
    for(Int32 i = 0; i < (1 << 22); ++i)
        text += "v 0 0 0 0 0 0 0\n";
    const std::string bomb = corvanetest::deflated(text, true);
    ASSERT_LT(bomb.size(), 1u << 20);
    putFile(path("bomb.obj.gz"), bomb);
    h.setMaxFileBytes(8 << 20);
    EXPECT_EQ(readLogged(path("bomb.obj.gz"), log), NullFC);
    EXPECT_EQ(lineCount(log), 1u) << log;
    EXPECT_NE(log.find("more than 8388608 bytes"), std::string::npos) << log;
    {
        LogCapture         capture(LOG_WARNING);
        std::istringstream is(bomb);
        EXPECT_EQ(h.read(is, "obj"), NullFC);
        log = capture.take();
    }
    EXPECT_EQ(lineCount(log), 1u) << log;
    EXPECT_NE(log.find("more than 8388608 bytes"), std::string::npos) << log;
}

TEST_F(SceneFiles, MillionsOfTrianglesLoadOrAreRefused)
{
    // a binary PLY grid of 1000 x 1000 squares: 2 million triangles
    const Int32 n = 1000;
    std::string ply = "ply\nformat binary_little_endian 1.0\nelement vertex " +
                      std::to_string((n + 1) * (n + 1)) +
                      "\nproperty float x\nproperty float y\nproperty float z\n"
                      "element face " + std::to_string(2 * n * n) +
                      "\nproperty list uchar int vertex_indices\nend_header\n";
    ply.reserve(ply.size() + (n + 1) * (n + 1) * 12 + 2 * n * n * 13);
    for(Int32 y = 0; y <= n; ++y)
        for(Int32 x = 0; x <= n; ++x)
        {
            putRaw(ply, Real32(x));
            putRaw(ply, Real32(y));
            putRaw(ply, 0.f);
        }
    for(Int32 y = 0; y < n; ++y)
        for(Int32 x = 0; x < n; ++x)
        {
            const Int32 a = y * (n + 1) + x, b = a + 1, c = a + n + 2, d = a + n + 1;
            const Int32 tris[2][3] = {{a, b, c}, {a, c, d}};
            for(const auto &t : tris)
            {
                putRaw(ply, UInt8(3));
                putRaw(ply, t[0]);
                putRaw(ply, t[1]);
                putRaw(ply, t[2]);
            }
        }
    putFile(path("grid.ply"), ply);
    ply.clear();

    SceneFileHandler &h = SceneFileHandler::the();
    std::string       log;

    h.setMaxTriangles(1000000);
    EXPECT_EQ(readLogged(path("grid.ply"), log), NullFC);
    EXPECT_EQ(lineCount(log), 1u) << log;
    EXPECT_NE(log.find("2000000 faces, more than the budget of 1000000 triangles"),
              std::string::npos) << log;

    h.setMaxTriangles(0);
    Held root(readLogged(path("grid.ply"), log));
    ASSERT_NE(root.node, NullFC);
    EXPECT_EQ(log, "");
    GeometryPtr geo = onlyGeometry(root.node);
    ASSERT_NE(geo, NullFC);
    EXPECT_EQ(geo->getPositions()->getSize(), UInt32((n + 1) * (n + 1)));
    EXPECT_EQ(geo->getIndices()->getSize(), UInt32(6 * n * n));
}

// --- writing -------------------------------------------------------------------

namespace
{

/// A box of 1 x 2 x 3 under a transform that scales by 2 and moves by
/// (1, 2, 3), with a blue-grey material: built as an application would.
NodePtr roundTripScene(void)
{
    GeometryPtr       box = makeBoxGeo(1, 2, 3, 1, 1, 1);
    SimpleMaterialPtr mat = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setDiffuse(Color3f(0.25f, 0.5f, 0.75f));
    endEditCP(mat);
    beginEditCP(box, Geometry::MaterialFieldMask);
    box->setMaterial(mat);
    endEditCP(box, Geometry::MaterialFieldMask);

    TransformPtr t = Transform::create();
    Matrix       m;
    m.setTransform(Vec3f(1, 2, 3), Quaternion(), Vec3f(2, 2, 2));
    beginEditCP(t, Transform::MatrixFieldMask);
    t->setMatrix(m);
    endEditCP(t, Transform::MatrixFieldMask);

    NodePtr boxNode = makeNodeFor(box);
    NodePtr moved   = Node::create();
    beginEditCP(moved);
    moved->setCore(t);
    moved->addChild(boxNode);
    endEditCP(moved);

    NodePtr root = Node::create();
    beginEditCP(root);
    root->setCore(Group::create());
    root->addChild(moved);
    endEditCP(root);
    return root;
}

} // namespace

TEST_F(SceneFiles, WriteAndReadBack)
{
    SceneFileHandler           &h = SceneFileHandler::the();
    Held                        scene(roundTripScene());
    const std::vector<Triangle> expected = worldTriangles(scene.node);
    ASSERT_EQ(expected.size(), 12u);

    for(const char *name : {"round.obj", "round.ply", "round.stl", "round.stla", "round.glb",
                            "round.gltf", "round.obj.gz", "round.ply.gz"})
    {
        SCOPED_TRACE(name);
        LogCapture log(LOG_WARNING);
        ASSERT_TRUE(h.write(scene.node, path(name).c_str()));
        Held back(h.read(path(name).c_str()));
        EXPECT_EQ(log.take(), "");
        ASSERT_NE(back.node, NullFC);
        EXPECT_EQ(worldTriangles(back.node), expected);

        // the single-file form of OBJ (compressed) has no material library
        const std::string s(name);
        if(s == "round.obj" || s.find("gl") != std::string::npos)
        {
            const std::vector<NodePtr> geos = geometryNodes(back.node);
            ASSERT_FALSE(geos.empty());
            SimpleMaterialPtr mat = materialOf(GeometryPtr::dcast(geos[0]->getCore()));
            ASSERT_NE(mat, NullFC);
            const Color3f d = mat->getDiffuse();
            EXPECT_NEAR(d[0], 0.25f, 1e-3f);
            EXPECT_NEAR(d[1], 0.5f, 1e-3f);
            EXPECT_NEAR(d[2], 0.75f, 1e-3f);
        }
    }
    EXPECT_EQ(getFile(path("round.obj.gz")).substr(0, 2), "\x1f\x8b");

    // the stream form, compressed or not
    for(bool gz : {false, true})
    {
        std::stringstream ss;
        ASSERT_TRUE(h.write(scene.node, ss, "glb", gz));
        Held back(h.read(ss, "glb"));
        ASSERT_NE(back.node, NullFC);
        EXPECT_EQ(worldTriangles(back.node), expected);
    }

    // a .gltf needs its buffer file; OFF and unknown suffixes are not written
    LogCapture        log(LOG_WARNING);
    std::stringstream ss;
    EXPECT_FALSE(h.write(scene.node, ss, "gltf"));
    EXPECT_NE(log.take().find("several files"), std::string::npos);
    EXPECT_FALSE(h.write(scene.node, path("round.off").c_str()));
    EXPECT_NE(log.take().find("unknown file format"), std::string::npos);
}

// The mesh formats read and written through Assimp: Wavefront OBJ, Stanford
// PLY, STL, glTF 2 (text and binary) and OFF.
//
// Assimp stays private to this file: it reads from memory through an I/O
// system of ours, which serves the scene file's bytes and, for a scene read
// from a file, the files it names beside it (material libraries, buffers)
// within ImageFileHandler's rule for files outside the folder. Each read
// uses only the importers of the suffix's own format, after light checks
// of what the file announces (element, vertex and face counts, nesting
// depth) against the handler's budgets and the file's size. Assimp's messages go to our log; nothing it throws
// leaves this file.
#include <OpenSG/OSGSceneFileType.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGeoPropPtrs.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGTriangleIterator.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <assimp/BaseImporter.h>
#include <assimp/DefaultLogger.hpp>
#include <assimp/Exporter.hpp>
#include <assimp/IOSystem.hpp>
#include <assimp/Importer.hpp>
#include <assimp/LogStream.hpp>
#include <assimp/MemoryIOWrapper.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{

/// The name the scene file's own bytes go by inside Assimp; it has no
/// folder, so every other name Assimp asks for is relative to the file.
const std::string MainFileStem = "$$scene$$.";

/// Scene graphs deeper than this are cut there (with a warning).
const UInt32 MaxNodeDepth = 256;

/// JSON nested deeper than this is refused before Assimp's recursive
/// parser sees it.
const UInt32 MaxJsonDepth = 64;

/// One suffix of a format: the Assimp extension that picks the importer,
/// and the exporters for a file and for a stream (NULL: not supported).
struct SuffixInfo
{
    const Char8 *suffix;
    const Char8 *assimpExt;
    const Char8 *fileExport;
    const Char8 *streamExport;
};

// --- Assimp's messages ------------------------------------------------------------

/// Assimp's warnings and errors, as notices of ours: the reader's own
/// warning carries the reason a file is refused.
class LogToOSG : public Assimp::LogStream
{
  public:
    void write(const char *message) override
    {
        std::string text(message != NULL ? message : "");

        while(!text.empty() && (text.back() == '\n' || text.back() == '\r'))
            text.pop_back();
        SNOTICE << "Assimp: " << text << std::endl;
    }
};

void routeAssimpLog(void)
{
    static std::once_flag once;

    std::call_once(once, [] {
        Assimp::DefaultLogger::create("", Assimp::Logger::NORMAL, 0);
        Assimp::DefaultLogger::get()->attachStream(
            new LogToOSG, Assimp::Logger::Warn | Assimp::Logger::Err);
    });
}

// --- files for Assimp -----------------------------------------------------------------

/// Serves the scene file from memory and, when the scene came from a file,
/// the files it names from beside it; nothing else.
class MeshIOSystem : public Assimp::IOSystem
{
  public:
    MeshIOSystem(const UInt8 *data, UInt64 size, const std::string &mainName,
                 const std::string &sourcePath)
        : _data(data), _size(size), _mainName(mainName),
          _sourcePath(sourcePath), _refused()
    {
    }

    bool Exists(const char *file) const override
    {
        std::string path;
        return file != NULL &&
               (_mainName == file || sidePath(file, path));
    }

    char getOsSeparator(void) const override { return '/'; }

    Assimp::IOStream *Open(const char *file, const char *mode) override
    {
        if(file == NULL || mode == NULL || std::strchr(mode, 'w') != NULL ||
           std::strchr(mode, 'a') != NULL)
            return NULL;

        if(_mainName == file)
            return new Assimp::MemoryIOStream(_data, size_t(_size), false);

        std::string path;
        if(!sidePath(file, path))
            return NULL;

        const UInt64       limit = SceneFileHandler::the().getMaxFileBytes();
        std::vector<UInt8> bytes;

        if(!volumeReadFile(path, 0, limit + 1, false, bytes))
            return NULL;
        if(bytes.size() > limit)
        {
            SWARNING << "SceneFileHandler: " << path << " holds more than "
                     << limit << " bytes; not read" << std::endl;
            return NULL;
        }

        UInt8 *copy = new UInt8[std::max<size_t>(bytes.size(), 1)];
        std::copy(bytes.begin(), bytes.end(), copy);
        return new Assimp::MemoryIOStream(copy, bytes.size(), true);
    }

    void Close(Assimp::IOStream *stream) override { delete stream; }

    bool ComparePaths(const char *one, const char *second) const override
    {
        return std::strcmp(one, second) == 0;
    }

  private:
    /// Where a side file named `file` lies; false when there is no source
    /// file, no such file, or it lies outside what may be read (warned
    /// once per name).
    bool sidePath(const char *file, std::string &path) const
    {
        // importers ask for "x", "./x" or both
        std::string name(file);
        while(name.compare(0, 2, "./") == 0)
            name.erase(0, 2);

        if(_sourcePath.empty() || name.empty() || _refused.count(name) != 0)
            return false;
        // after a refusal, importers try the same file by other names
        // ("/x"): one warning says it
        if(!_refused.empty() && name[0] == '/' &&
           !ImageFileHandler::the().getAllowOutsideDataFiles())
            return false;

        const VolumeDataFileResult found =
            volumeDataFilePath(_sourcePath, name, path, "SceneFileHandler");

        if(found == VolumeDataFileRefused)
            _refused.insert(name);
        return found == VolumeDataFileFound;
    }

    const UInt8                  *_data;
    UInt64                        _size;
    std::string                   _mainName;
    std::string                   _sourcePath;
    mutable std::set<std::string> _refused;
};

// --- light checks before Assimp reads ---------------------------------------

/// The first line of text at pos (without its end), pos moved past it.
std::string nextLine(const UInt8 *data, UInt64 size, UInt64 &pos)
{
    const UInt64 start = pos;

    while(pos < size && data[pos] != '\n')
        ++pos;

    std::string line(reinterpret_cast<const char *>(data + start), pos - start);

    if(pos < size)
        ++pos;
    if(!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

UInt32 plyScalarSize(const std::string &type)
{
    static const struct
    {
        const char *name;
        UInt32      size;
    } types[] = {{"char", 1},    {"uchar", 1},   {"int8", 1},    {"uint8", 1},
                 {"short", 2},   {"ushort", 2},  {"int16", 2},   {"uint16", 2},
                 {"int", 4},     {"uint", 4},    {"int32", 4},   {"uint32", 4},
                 {"float", 4},   {"float32", 4}, {"double", 8},  {"float64", 8}};

    for(const auto &t : types)
        if(type == t.name)
            return t.size;
    return 0;
}

bool plyIntegral(const std::string &type)
{
    return plyScalarSize(type) != 0 && type.find("float") == std::string::npos &&
           type != "double";
}

/// A property of a PLY element: a scalar (countSize 0) or a list.
struct PLYProperty
{
    UInt32 countSize;
    UInt32 itemSize;
};

struct PLYElement
{
    UInt64                   count;
    std::vector<PLYProperty> properties;
};

typedef std::vector<PLYElement> PLYLayout;

const char *const PLYListTooLong = "a list longer than the rest of the file";
const char *const PLYEndsEarly   = "the elements end before the header's counts";

/// A binary body walked element by element: every list's length must fit
/// in what is left (Assimp sizes each list by its count before reading).
bool checkPLYBinary(const UInt8 *data, UInt64 size, UInt64 pos, bool bigEndian,
                    const PLYLayout &layout, std::string &reason)
{
    for(const PLYElement &e : layout)
    {
        for(UInt64 i = 0; i < e.count; ++i)
        {
            for(const PLYProperty &p : e.properties)
            {
                if(p.countSize == 0)
                {
                    if(size - pos < p.itemSize)
                    {
                        reason = PLYEndsEarly;
                        return false;
                    }
                    pos += p.itemSize;
                    continue;
                }
                if(size - pos < p.countSize)
                {
                    reason = PLYEndsEarly;
                    return false;
                }
                UInt64 n = 0;
                for(UInt32 b = 0; b < p.countSize; ++b)
                {
                    const UInt32 at = bigEndian ? b : p.countSize - 1 - b;
                    n               = (n << 8) | data[pos + at];
                }
                pos += p.countSize;
                if(n > (size - pos) / p.itemSize)
                {
                    reason = PLYListTooLong;
                    return false;
                }
                pos += n * p.itemSize;
            }
        }
    }
    return true;
}

/// A text body walked word by word, with the same rule for lists.
bool checkPLYText(const UInt8 *data, UInt64 size, UInt64 pos, const PLYLayout &layout,
                  std::string &reason)
{
    auto nextWord = [&](std::string &word) -> bool {
        while(pos < size && std::isspace(data[pos]))
            ++pos;
        const UInt64 start = pos;
        while(pos < size && !std::isspace(data[pos]))
            ++pos;
        word.assign(reinterpret_cast<const char *>(data + start), size_t(pos - start));
        return pos > start;
    };

    std::string word;
    for(const PLYElement &e : layout)
    {
        for(UInt64 i = 0; i < e.count; ++i)
        {
            for(const PLYProperty &p : e.properties)
            {
                if(!nextWord(word))
                {
                    reason = PLYEndsEarly;
                    return false;
                }
                if(p.countSize == 0)
                    continue;
                if(word.size() > 19 || word.find_first_not_of("0123456789") != std::string::npos ||
                   std::stoull(word) > (size - pos) / 2)
                {
                    reason = PLYListTooLong;
                    return false;
                }
                for(UInt64 k = std::stoull(word); k > 0; --k)
                {
                    if(!nextWord(word))
                    {
                        reason = PLYEndsEarly;
                        return false;
                    }
                }
            }
        }
    }
    return true;
}

/// A PLY header's elements against the bytes that follow it and against
/// the budget: Assimp sizes its lists by the announced counts.
bool checkPLY(const UInt8 *data, UInt64 size, std::string &reason)
{
    const UInt64 maxTriangles = SceneFileHandler::the().getMaxTriangles();
    UInt64       pos          = 0;

    if(nextLine(data, size, pos) != "ply")
    {
        reason = "no PLY header";
        return false;
    }

    bool        ascii = false, bigEndian = false, ended = false;
    UInt64      need  = 0, elementCount = 0, elementMin = 0;
    std::string element;
    PLYLayout   layout;

    auto closeElement = [&](void) -> bool {
        if(element.empty())
            return true;
        const UInt64 perElement = std::max<UInt64>(elementMin, 1);
        if(elementCount > (UInt64(1) << 40) / perElement)
        {
            reason = "element " + element + " is too large";
            return false;
        }
        need += elementCount * perElement;
        if(element == "face" && elementCount > maxTriangles)
        {
            reason = std::to_string(elementCount) +
                     " faces, more than the budget of " +
                     std::to_string(maxTriangles) +
                     " triangles (see SceneFileHandler::setMaxTriangles)";
            return false;
        }
        if(element == "vertex" && elementCount > 3 * maxTriangles)
        {
            reason = std::to_string(elementCount) +
                     " vertices, more than the budget of " +
                     std::to_string(3 * maxTriangles) +
                     " (see SceneFileHandler::setMaxTriangles)";
            return false;
        }
        return true;
    };

    // Only the lines of the layout are taken, each in its exact form:
    // Assimp reads a damaged line its own way (a count glued to a name
    // becomes a count of billions), so what it would read differently from
    // this check is refused.
    auto isName = [](const std::string &w) {
        return !w.empty() && (std::isalpha(UInt8(w[0])) || w[0] == '_') &&
               std::all_of(w.begin(), w.end(), [](char c) {
                   return std::isalnum(UInt8(c)) || c == '_';
               });
    };

    while(pos < size && pos < (UInt64(1) << 20))
    {
        std::istringstream       line(nextLine(data, size, pos));
        std::vector<std::string> words;
        std::string              word;

        while(line >> word)
            words.push_back(word);
        if(words.empty() || words[0] == "comment" || words[0] == "obj_info")
            continue;

        const size_t n = words.size();

        if(words[0] == "format" && n == 3)
        {
            ascii     = words[1] == "ascii";
            bigEndian = words[1] == "binary_big_endian";
        }
        else if(words[0] == "element" && n == 3 && isName(words[1]))
        {
            if(!closeElement())
                return false;
            element                  = words[1];
            const std::string &count = words[2];
            if(count.size() > 19 ||
               count.find_first_not_of("0123456789") != std::string::npos)
            {
                reason = "element " + element + " has no count";
                return false;
            }
            elementCount = std::stoull(count);
            elementMin   = 0;
            layout.push_back(PLYElement{elementCount, {}});
        }
        else if(words[0] == "property" && !element.empty() &&
                ((n == 3 && plyScalarSize(words[1]) != 0 && isName(words[2])) ||
                 (n == 5 && words[1] == "list" && plyScalarSize(words[2]) != 0 &&
                  plyScalarSize(words[3]) != 0 && isName(words[4]))))
        {
            // a text value takes a digit and a blank at least
            elementMin += ascii ? 2 : plyScalarSize(words[n == 3 ? 1 : 2]);
            const bool list = n == 5;
            if(list && !plyIntegral(words[2]))
            {
                reason = "a list counted by " + words[2];
                return false;
            }
            layout.back().properties.push_back(
                PLYProperty{list ? plyScalarSize(words[2]) : 0, plyScalarSize(words[n - 2])});
        }
        else if(words[0] == "end_header" && n == 1)
        {
            ended = true;
            break;
        }
        else
        {
            reason = "a malformed header line '" + words[0] + "...'";
            return false;
        }
    }

    if(!ended)
    {
        reason = "no end_header";
        return false;
    }
    if(!closeElement())
        return false;
    if(need > size - pos)
    {
        reason = "the header announces " + std::to_string(need) +
                 " bytes of elements, the file holds " +
                 std::to_string(size - pos);
        return false;
    }
    return ascii ? checkPLYText(data, size, pos, layout, reason)
                 : checkPLYBinary(data, size, pos, bigEndian, layout, reason);
}

/// A binary STL's triangle count against the budget (Assimp checks it
/// against the file's size).
bool checkSTL(const UInt8 *data, UInt64 size, std::string &reason)
{
    const bool text = size >= 5 && std::memcmp(data, "solid", 5) == 0;

    if(text || size < 84)
        return true;

    const UInt64 count = UInt64(data[80]) | (UInt64(data[81]) << 8) |
                         (UInt64(data[82]) << 16) | (UInt64(data[83]) << 24);
    const UInt64 maxTriangles = SceneFileHandler::the().getMaxTriangles();

    if(count > maxTriangles)
    {
        reason = std::to_string(count) + " triangles, more than the budget of " +
                 std::to_string(maxTriangles) +
                 " (see SceneFileHandler::setMaxTriangles)";
        return false;
    }
    return true;
}

/// An OFF file's header, "[ST][C][N][4]OFF nv nf ne", against the budget
/// and the bytes that follow it: Assimp allocates what the counts say.
bool checkOFF(const UInt8 *data, UInt64 size, std::string &reason)
{
    // the first four words, comment lines skipped
    std::string words[4];
    UInt64      pos = 0;
    for(Int32 found = 0; found < 4 && pos < size && pos < 4096;)
    {
        const std::string line = nextLine(data, size, pos);
        if(line.find_first_not_of(" \t") != std::string::npos &&
           line[line.find_first_not_of(" \t")] == '#')
            continue;
        std::istringstream in(line);
        while(found < 4 && in >> words[found])
            ++found;
    }
    const std::string &magic  = words[0];
    const std::string *counts = words + 1;

    const std::string kinds[] = {"OFF", "COFF", "NOFF", "CNOFF", "STOFF", "STCOFF",
                                 "STNOFF", "STCNOFF", "4OFF", "C4OFF", "N4OFF", "CN4OFF"};
    if(std::find(std::begin(kinds), std::end(kinds), magic) == std::end(kinds))
    {
        reason = "no OFF header";
        return false;
    }

    UInt64 n[3];
    for(Int32 i = 0; i < 3; ++i)
    {
        // nine digits at most: Assimp reads them into 32 bits
        if(counts[i].empty() || counts[i].size() > 9 ||
           counts[i].find_first_not_of("0123456789") != std::string::npos)
        {
            reason = "no vertex, face and edge counts";
            return false;
        }
        n[i] = std::stoull(counts[i]);
    }

    const UInt64 maxTriangles = SceneFileHandler::the().getMaxTriangles();

    if(n[1] > maxTriangles || n[0] > 3 * maxTriangles)
    {
        reason = std::to_string(n[1]) + " faces and " + std::to_string(n[0]) +
                 " vertices, more than the budget of " + std::to_string(maxTriangles) +
                 " triangles (see SceneFileHandler::setMaxTriangles)";
        return false;
    }
    // a vertex takes "0 0 0\n" at least, a face "0\n"
    if(6 * n[0] + 2 * n[1] > size)
    {
        reason = "the header announces more vertices and faces than the file holds";
        return false;
    }
    return true;
}

/// JSON text nested no deeper than MaxJsonDepth (brackets inside strings
/// do not count).
bool checkJsonDepth(const UInt8 *data, UInt64 size, std::string &reason)
{
    UInt32 depth = 0;
    bool   inString = false, escaped = false;

    for(UInt64 i = 0; i < size; ++i)
    {
        const UInt8 c = data[i];

        if(inString)
        {
            if(escaped)
                escaped = false;
            else if(c == '\\')
                escaped = true;
            else if(c == '"')
                inString = false;
        }
        else if(c == '"')
        {
            inString = true;
        }
        else if(c == '[' || c == '{')
        {
            if(++depth > MaxJsonDepth)
            {
                reason = "JSON nested deeper than " + std::to_string(MaxJsonDepth);
                return false;
            }
        }
        else if((c == ']' || c == '}') && depth > 0)
        {
            --depth;
        }
    }
    return true;
}

UInt32 littleU32(const UInt8 *p)
{
    return UInt32(p[0]) | (UInt32(p[1]) << 8) | (UInt32(p[2]) << 16) |
           (UInt32(p[3]) << 24);
}

/// A binary glTF: its container and the nesting of its JSON chunk.
bool checkGLB(const UInt8 *data, UInt64 size, std::string &reason)
{
    if(size < 20 || std::memcmp(data, "glTF", 4) != 0 || littleU32(data + 4) != 2)
    {
        reason = "no glTF 2 binary header";
        return false;
    }

    const UInt64 length = littleU32(data + 8), jsonLength = littleU32(data + 12);

    if(length > size || jsonLength > size - 20 ||
       std::memcmp(data + 16, "JSON", 4) != 0)
    {
        reason = "a glTF binary container that does not fit its file";
        return false;
    }
    return checkJsonDepth(data + 20, jsonLength, reason);
}

bool precheck(const std::string &ext, const UInt8 *data, UInt64 size,
              std::string &reason)
{
    if(ext == "ply")
        return checkPLY(data, size, reason);
    if(ext == "stl")
        return checkSTL(data, size, reason);
    if(ext == "off")
        return checkOFF(data, size, reason);
    if(ext == "gltf")
        return checkJsonDepth(data, size, reason);
    if(ext == "glb")
        return checkGLB(data, size, reason);
    return true;
}

// --- Assimp's scene to OpenSG ------------------------------------------------------

Color3f toColor3f(const aiColor3D &c)
{
    return Color3f(c.r, c.g, c.b);
}

Real32 clamped(Real32 v, Real32 lo, Real32 hi)
{
    return std::isfinite(v) ? std::min(std::max(v, lo), hi) : lo;
}

/// A property of `count` values converted from Assimp's array `from`;
/// NullFC when the mesh has no such array.
template <class PropT, class SourceT, class ConvertT>
typename PropT::Ptr copyAttribute(const SourceT *from, UInt32 count, ConvertT convert)
{
    if(from == NULL)
        return NullFC;

    typename PropT::Ptr prop = PropT::create();
    beginEditCP(prop);
    prop->getField().reserve(count);
    for(UInt32 i = 0; i < count; ++i)
        prop->getField().push_back(convert(from[i]));
    endEditCP(prop);
    return prop;
}

class SceneBuilder
{
  public:
    SceneBuilder(const aiScene *scene, const std::string &sourcePath)
        : _scene(scene), _sourcePath(sourcePath), _geometries(), _materials()
    {
    }

    NodePtr build(void);

  private:
    NodePtr     makeNode(const aiNode *from);
    GeometryPtr geometry(UInt32 meshIndex);
    MaterialPtr material(UInt32 materialIndex);
    void        addTexture(SimpleMaterialPtr mat, const aiMaterial *from);
    ImagePtr    readTexture(const std::string &name);

    const aiScene                     *_scene;
    std::string                        _sourcePath;
    std::map<UInt32, GeometryPtr>      _geometries;
    std::map<UInt32, SimpleMaterialPtr> _materials;
};

NodePtr SceneBuilder::makeNode(const aiNode *from)
{
    const aiMatrix4x4 &a = from->mTransformation;
    TransformPtr       t = Transform::create();

    beginEditCP(t, Transform::MatrixFieldMask);
    t->setMatrix(Matrix(a.a1, a.a2, a.a3, a.a4, a.b1, a.b2, a.b3, a.b4, a.c1,
                        a.c2, a.c3, a.c4, a.d1, a.d2, a.d3, a.d4));
    endEditCP(t, Transform::MatrixFieldMask);

    NodePtr node = Node::create();

    beginEditCP(node, Node::CoreFieldMask | Node::ChildrenFieldMask);
    node->setCore(t);
    for(UInt32 i = 0; i < from->mNumMeshes; ++i)
    {
        GeometryPtr geo = geometry(from->mMeshes[i]);

        if(geo == NullFC)
            continue;

        NodePtr child = Node::create();
        beginEditCP(child, Node::CoreFieldMask);
        child->setCore(geo);
        endEditCP(child, Node::CoreFieldMask);
        node->addChild(child);
    }
    endEditCP(node, Node::CoreFieldMask | Node::ChildrenFieldMask);

    if(from->mName.length > 0)
        setName(node, from->mName.C_Str());

    return node;
}

NodePtr SceneBuilder::build(void)
{
    struct Pending
    {
        const aiNode *from;
        NodePtr       parent;
        UInt32        depth;
    };

    NodePtr              root = NullFC;
    std::vector<Pending> stack(1, Pending{_scene->mRootNode, NullFC, 0});
    bool                 cut  = false;

    while(!stack.empty())
    {
        const Pending p = stack.back();
        stack.pop_back();

        NodePtr node = makeNode(p.from);

        if(p.parent == NullFC)
        {
            root = node;
        }
        else
        {
            beginEditCP(p.parent, Node::ChildrenFieldMask);
            p.parent->addChild(node);
            endEditCP(p.parent, Node::ChildrenFieldMask);
        }

        if(p.depth + 1 >= MaxNodeDepth && p.from->mNumChildren > 0)
        {
            cut = true;
            continue;
        }
        // pushed in reverse, so that children come out in their order
        for(UInt32 i = p.from->mNumChildren; i > 0; --i)
        {
            if(p.from->mChildren[i - 1] != NULL)
                stack.push_back(Pending{p.from->mChildren[i - 1], node, p.depth + 1});
        }
    }

    if(cut)
        SWARNING << "SceneFileHandler: the scene is nested deeper than "
                 << MaxNodeDepth << " levels; the deeper nodes are left out"
                 << std::endl;
    return root;
}

GeometryPtr SceneBuilder::geometry(UInt32 meshIndex)
{
    if(meshIndex >= _scene->mNumMeshes)
        return NullFC;

    std::map<UInt32, GeometryPtr>::iterator known = _geometries.find(meshIndex);
    if(known != _geometries.end())
        return known->second;

    const aiMesh *mesh = _scene->mMeshes[meshIndex];
    const UInt32  count = mesh != NULL ? mesh->mNumVertices : 0;

    if(count == 0 || mesh->mVertices == NULL || mesh->mNumFaces == 0)
        return _geometries[meshIndex] = NullFC;

    GeoPositions3fPtr pnts = copyAttribute<GeoPositions3f>(
        mesh->mVertices, count, [](const aiVector3D &v) { return Pnt3f(v.x, v.y, v.z); });
    GeoNormals3fPtr norms = copyAttribute<GeoNormals3f>(
        mesh->mNormals, count, [](const aiVector3D &n) { return Vec3f(n.x, n.y, n.z); });
    GeoTexCoords2fPtr tex = copyAttribute<GeoTexCoords2f>(
        mesh->mTextureCoords[0], count, [](const aiVector3D &t) { return Vec2f(t.x, t.y); });
    GeoColors4fPtr colors = copyAttribute<GeoColors4f>(
        mesh->mColors[0], count,
        [](const aiColor4D &c) { return Color4f(c.r, c.g, c.b, c.a); });

    // points, lines and triangles each in one primitive; polygons become
    // fans of triangles (Assimp's own triangulation aborts on some
    // malformed faces)
    std::vector<UInt32> byCorners[4];

    for(UInt32 f = 0; f < mesh->mNumFaces; ++f)
    {
        const aiFace &face  = mesh->mFaces[f];
        bool          valid = face.mNumIndices > 0 && face.mIndices != NULL;

        for(UInt32 k = 0; valid && k < face.mNumIndices; ++k)
            valid = face.mIndices[k] < count;
        if(!valid)
            continue;

        if(face.mNumIndices <= 3)
        {
            std::vector<UInt32> &into = byCorners[face.mNumIndices];
            into.insert(into.end(), face.mIndices, face.mIndices + face.mNumIndices);
            continue;
        }
        for(UInt32 k = 1; k + 1 < face.mNumIndices; ++k)
        {
            byCorners[3].push_back(face.mIndices[0]);
            byCorners[3].push_back(face.mIndices[k]);
            byCorners[3].push_back(face.mIndices[k + 1]);
        }
    }

    GeoIndicesUI32Ptr  index = GeoIndicesUI32::create();
    GeoPTypesUI8Ptr    types = GeoPTypesUI8::create();
    GeoPLengthsUI32Ptr lens  = GeoPLengthsUI32::create();
    const GLenum       kinds[4] = {GL_POINTS, GL_POINTS, GL_LINES, GL_TRIANGLES};

    beginEditCP(index);
    beginEditCP(types);
    beginEditCP(lens);
    index->getField().reserve(byCorners[1].size() + byCorners[2].size() +
                              byCorners[3].size());
    for(UInt32 n = 1; n <= 3; ++n)
    {
        if(byCorners[n].empty())
            continue;
        for(UInt32 i : byCorners[n])
            index->getField().push_back(i);
        types->getField().push_back(UInt8(kinds[n]));
        lens->getField().push_back(UInt32(byCorners[n].size()));
    }
    endEditCP(lens);
    endEditCP(types);
    endEditCP(index);

    GeometryPtr geo = Geometry::create();
    beginEditCP(geo);
    geo->setPositions(pnts);
    if(norms != NullFC)
        geo->setNormals(norms);
    if(tex != NullFC)
        geo->setTexCoords(tex);
    if(colors != NullFC)
        geo->setColors(colors);
    geo->setIndices(index);
    geo->setTypes(types);
    geo->setLengths(lens);
    geo->setMaterial(material(mesh->mMaterialIndex));
    endEditCP(geo);

    return _geometries[meshIndex] = geo;
}

MaterialPtr SceneBuilder::material(UInt32 materialIndex)
{
    std::map<UInt32, SimpleMaterialPtr>::iterator known =
        _materials.find(materialIndex);
    if(known != _materials.end())
        return known->second;

    const aiMaterial *from = materialIndex < _scene->mNumMaterials
                                 ? _scene->mMaterials[materialIndex]
                                 : NULL;
    SimpleMaterialPtr mat = SimpleMaterial::create();

    aiColor3D diffuse(0.8f, 0.8f, 0.8f), specular(0.f, 0.f, 0.f),
        ambient(0.f, 0.f, 0.f), emissive(0.f, 0.f, 0.f);
    float shininess = 0.f, opacity = 1.f;

    if(from != NULL)
    {
        from->Get(AI_MATKEY_COLOR_DIFFUSE, diffuse);
        from->Get(AI_MATKEY_COLOR_SPECULAR, specular);
        from->Get(AI_MATKEY_COLOR_AMBIENT, ambient);
        from->Get(AI_MATKEY_COLOR_EMISSIVE, emissive);
        from->Get(AI_MATKEY_SHININESS, shininess);
        from->Get(AI_MATKEY_OPACITY, opacity);
    }

    beginEditCP(mat);
    mat->setDiffuse(toColor3f(diffuse));
    mat->setSpecular(toColor3f(specular));
    mat->setAmbient(toColor3f(ambient));
    mat->setEmission(toColor3f(emissive));
    // GL takes exponents up to 128; files give up to 1000 (OBJ's Ns)
    mat->setShininess(clamped(shininess, 0.f, 128.f));
    mat->setTransparency(1.f - clamped(opacity, 0.f, 1.f));
    if(from != NULL)
        addTexture(mat, from);
    endEditCP(mat);

    return _materials[materialIndex] = mat;
}

void SceneBuilder::addTexture(SimpleMaterialPtr mat, const aiMaterial *from)
{
    aiString name;

    if(from->GetTexture(aiTextureType_DIFFUSE, 0, &name) != AI_SUCCESS &&
       from->GetTexture(aiTextureType_BASE_COLOR, 0, &name) != AI_SUCCESS)
        return;

    ImagePtr img = readTexture(name.C_Str());

    if(img == NullFC)
        return;

    TextureChunkPtr chunk = TextureChunk::create();
    beginEditCP(chunk);
    chunk->setImage(img);
    chunk->setEnvMode(GL_MODULATE);
    endEditCP(chunk);

    mat->addChunk(chunk);
    // the texture carries the surface's colour; lighting modulates it
    mat->setDiffuse(Color3f(1.f, 1.f, 1.f));
}

ImagePtr SceneBuilder::readTexture(const std::string &name)
{
    if(const aiTexture *embedded = _scene->GetEmbeddedTexture(name.c_str()))
    {
        // compressed data (mHeight 0) of mWidth bytes; raw texels are rare
        if(embedded->mHeight != 0 || embedded->pcData == NULL)
            return NullFC;
        std::istringstream is(std::string(
            reinterpret_cast<const char *>(embedded->pcData), embedded->mWidth));
        return ImageFileHandler::the().read(is, embedded->achFormatHint);
    }

    std::string path;

    if(_sourcePath.empty())
        return NullFC;

    const VolumeDataFileResult found =
        volumeDataFilePath(_sourcePath, name, path, "SceneFileHandler");

    if(found == VolumeDataFileMissing)
        SWARNING << "SceneFileHandler: the texture " << name << " of "
                 << _sourcePath << " is missing; drawn without it" << std::endl;
    if(found != VolumeDataFileFound)
        return NullFC;

    return ImageFileHandler::the().read(path.c_str());
}

// --- OpenSG to Assimp's scene -------------------------------------------------

class SceneExporter
{
  public:
    explicit SceneExporter(aiScene *scene) : _scene(scene) {}

    /// Fills the scene from the graph under root; false when it holds no
    /// triangles.
    bool fill(const NodePtr &root);

  private:
    Int32 meshFor(const GeometryPtr &geo);

    aiScene                      *_scene;
    std::vector<aiMesh *>         _meshes;
    std::vector<aiMaterial *>     _materials;
    std::map<GeometryPtr, Int32>  _known;
};

aiMaterial *exportMaterial(const MaterialPtr &from, UInt32 number)
{
    aiMaterial *mat  = new aiMaterial;
    aiString    name(("material" + std::to_string(number)).c_str());
    aiColor3D   diffuse(0.8f, 0.8f, 0.8f), specular(0, 0, 0), ambient(0, 0, 0),
        emissive(0, 0, 0);
    float shininess = 0.f, opacity = 1.f;

    if(SimpleMaterialPtr simple = SimpleMaterialPtr::dcast(from))
    {
        const Color3f &d = simple->getDiffuse(), &s = simple->getSpecular(),
                      &a = simple->getAmbient(), &e = simple->getEmission();
        diffuse   = aiColor3D(d[0], d[1], d[2]);
        specular  = aiColor3D(s[0], s[1], s[2]);
        ambient   = aiColor3D(a[0], a[1], a[2]);
        emissive  = aiColor3D(e[0], e[1], e[2]);
        shininess = simple->getShininess();
        opacity   = 1.f - simple->getTransparency();
    }

    mat->AddProperty(&name, AI_MATKEY_NAME);
    mat->AddProperty(&diffuse, 1, AI_MATKEY_COLOR_DIFFUSE);
    mat->AddProperty(&specular, 1, AI_MATKEY_COLOR_SPECULAR);
    mat->AddProperty(&ambient, 1, AI_MATKEY_COLOR_AMBIENT);
    mat->AddProperty(&emissive, 1, AI_MATKEY_COLOR_EMISSIVE);
    mat->AddProperty(&shininess, 1, AI_MATKEY_SHININESS);
    mat->AddProperty(&opacity, 1, AI_MATKEY_OPACITY);
    return mat;
}

Int32 SceneExporter::meshFor(const GeometryPtr &geo)
{
    std::map<GeometryPtr, Int32>::iterator known = _known.find(geo);
    if(known != _known.end())
        return known->second;

    UInt32 triangles = 0;
    for(TriangleIterator it(geo); !it.isAtEnd(); ++it)
        ++triangles;

    if(triangles == 0)
        return _known[geo] = -1;

    const bool normals = geo->getNormals() != NullFC;
    const bool tex     = geo->getTexCoords() != NullFC;
    const bool colors  = geo->getColors() != NullFC;

    aiMesh *mesh          = new aiMesh;
    mesh->mPrimitiveTypes = aiPrimitiveType_TRIANGLE;
    mesh->mNumVertices    = 3 * triangles;
    mesh->mVertices       = new aiVector3D[3 * triangles];
    mesh->mNormals        = normals ? new aiVector3D[3 * triangles] : NULL;
    if(tex)
    {
        mesh->mTextureCoords[0]   = new aiVector3D[3 * triangles];
        mesh->mNumUVComponents[0] = 2;
    }
    if(colors)
        mesh->mColors[0] = new aiColor4D[3 * triangles];
    mesh->mNumFaces = triangles;
    mesh->mFaces    = new aiFace[triangles];

    UInt32 v = 0, f = 0;
    for(TriangleIterator it(geo); !it.isAtEnd() && f < triangles; ++it, ++f)
    {
        aiFace &face     = mesh->mFaces[f];
        face.mNumIndices = 3;
        face.mIndices    = new unsigned int[3];

        for(Int32 c = 0; c < 3; ++c, ++v)
        {
            face.mIndices[c] = v;
            const Pnt3f p    = it.getPosition(c);
            mesh->mVertices[v] = aiVector3D(p[0], p[1], p[2]);
            if(normals)
            {
                const Vec3f n     = it.getNormal(c);
                mesh->mNormals[v] = aiVector3D(n[0], n[1], n[2]);
            }
            if(tex)
            {
                const Vec2f t              = it.getTexCoords(c);
                mesh->mTextureCoords[0][v] = aiVector3D(t[0], t[1], 0.f);
            }
            if(colors)
            {
                const Color3f col    = it.getColor(c);
                mesh->mColors[0][v] = aiColor4D(col[0], col[1], col[2], 1.f);
            }
        }
    }

    mesh->mMaterialIndex = UInt32(_materials.size());
    _materials.push_back(exportMaterial(geo->getMaterial(), mesh->mMaterialIndex));

    _meshes.push_back(mesh);
    return _known[geo] = Int32(_meshes.size() - 1);
}

bool SceneExporter::fill(const NodePtr &root)
{
    struct Pending
    {
        NodePtr from;
        aiNode *to;
    };

    _scene->mRootNode = new aiNode("root");

    std::vector<Pending> stack(1, Pending{root, _scene->mRootNode});

    while(!stack.empty())
    {
        const Pending p = stack.back();
        stack.pop_back();

        const NodeCorePtr core = p.from->getCore();

        if(TransformPtr t = TransformPtr::dcast(core))
        {
            const Matrix &m = t->getMatrix();
            // aiMatrix4x4 takes rows; OpenSG keeps columns
            p.to->mTransformation =
                aiMatrix4x4(m[0][0], m[1][0], m[2][0], m[3][0], m[0][1], m[1][1],
                            m[2][1], m[3][1], m[0][2], m[1][2], m[2][2], m[3][2],
                            m[0][3], m[1][3], m[2][3], m[3][3]);
        }
        else if(GeometryPtr geo = GeometryPtr::dcast(core))
        {
            const Int32 mesh = meshFor(geo);
            if(mesh >= 0)
            {
                p.to->mNumMeshes = 1;
                p.to->mMeshes    = new unsigned int[1];
                p.to->mMeshes[0] = UInt32(mesh);
            }
        }

        const UInt32 n = p.from->getNChildren();
        if(n == 0)
            continue;

        p.to->mNumChildren = n;
        p.to->mChildren    = new aiNode *[n];
        for(UInt32 i = 0; i < n; ++i)
        {
            aiNode *child        = new aiNode;
            child->mParent       = p.to;
            p.to->mChildren[i]   = child;
            stack.push_back(Pending{p.from->getChild(i), child});
        }
    }

    _scene->mNumMeshes    = UInt32(_meshes.size());
    _scene->mMeshes       = new aiMesh *[std::max<size_t>(_meshes.size(), 1)];
    std::copy(_meshes.begin(), _meshes.end(), _scene->mMeshes);
    if(_materials.empty())
        _materials.push_back(exportMaterial(NullFC, 0));
    _scene->mNumMaterials = UInt32(_materials.size());
    _scene->mMaterials    = new aiMaterial *[_materials.size()];
    std::copy(_materials.begin(), _materials.end(), _scene->mMaterials);

    return !_meshes.empty();
}

// --- the file types ------------------------------------------------------------

class AssimpSceneFileType : public SceneFileType
{
  public:
    AssimpSceneFileType(const Char8 *name, const Char8 *suffixArray[],
                        UInt16 suffixByteCount, const SuffixInfo *infos,
                        UInt32 infoCount, UInt32 flags)
        : SceneFileType(suffixArray, suffixByteCount, false, 0, flags),
          _name(name), _infos(infos, infos + infoCount)
    {
    }

    const Char8 *getName(void) const override { return _name; }

    bool write(const NodePtr &node, std::ostream &os,
               const Char8 *fileNameOrExtension) const override;
    bool writeFile(const NodePtr &node, const Char8 *fileName) const override;

  protected:
    NodePtr readMemory(const UInt8 *data, UInt64 size,
                       const Char8 *fileNameOrExtension) const override;

  private:
    /// The entry for the suffix of a name (or the suffix itself).
    const SuffixInfo &info(const std::string &fileNameOrExtension) const;
    /// Exports the graph under node; blobs when fileName is NULL.
    bool exportScene(const NodePtr &node, const Char8 *formatId,
                     const Char8 *fileName, std::ostream *os,
                     const std::string &what) const;

    const Char8            *_name;
    std::vector<SuffixInfo> _infos;
};

std::string suffixOf(const std::string &name)
{
    std::string base = name.substr(name.find_last_of('/') + 1);
    std::transform(base.begin(), base.end(), base.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    if(base.size() > 3 && base.compare(base.size() - 3, 3, ".gz") == 0)
        base.resize(base.size() - 3);
    const size_t dot = base.rfind('.');
    return dot == std::string::npos ? base : base.substr(dot + 1);
}

const SuffixInfo &AssimpSceneFileType::info(const std::string &name) const
{
    const std::string suffix = suffixOf(name);

    for(const SuffixInfo &i : _infos)
        if(suffix == i.suffix)
            return i;
    return _infos.front();
}

NodePtr AssimpSceneFileType::readMemory(const UInt8 *data, UInt64 size,
                                        const Char8 *fileNameOrExtension) const
{
    const std::string name(fileNameOrExtension != NULL ? fileNameOrExtension : "");
    const bool        fromFile = name.find('.') != std::string::npos ||
                          name.find('/') != std::string::npos;
    const std::string what     = fromFile ? name : "a stream of type '" + name + "'";
    const std::string ext      = info(name).assimpExt;
    const SceneFileHandler &handler = SceneFileHandler::the();
    std::string             reason;

    if(!precheck(ext, data, size, reason))
    {
        SWARNING << "could not read " << what << "; " << reason << std::endl;
        return NullFC;
    }

    routeAssimpLog();

    try
    {
        Assimp::Importer importer;

        // only the importers of this format: a damaged file is not handed
        // to every other parser Assimp has in turn
        for(size_t i = importer.GetImporterCount(); i > 0; --i)
        {
            Assimp::BaseImporter *imp = importer.GetImporter(i - 1);
            std::set<std::string> exts;

            imp->GetExtensionList(exts);
            if(exts.count(ext) == 0 && importer.UnregisterLoader(imp) == AI_SUCCESS)
                delete imp;
        }

        const std::string mainName = MainFileStem + ext;
        importer.SetIOHandler(
            new MeshIOSystem(data, size, mainName, fromFile ? name : std::string()));

        const aiScene *scene = importer.ReadFile(
            mainName, aiProcess_JoinIdenticalVertices | aiProcess_GenSmoothNormals |
                          aiProcess_ValidateDataStructure);

        if(scene == NULL || scene->mRootNode == NULL)
        {
            // one line, naming the file as the caller knows it
            std::string why = importer.GetErrorString();
            for(size_t at = why.find(mainName); at != std::string::npos;
                at        = why.find(mainName))
                why.replace(at, mainName.size(), fromFile ? volumeBaseNameOf(name)
                                                          : std::string("the stream"));
            std::replace(why.begin(), why.end(), '\n', ' ');
            SWARNING << "could not read " << what << "; " << why << std::endl;
            return NullFC;
        }

        // polygons count as the triangles they become
        UInt64 triangles = 0, vertices = 0;
        for(UInt32 i = 0; i < scene->mNumMeshes; ++i)
        {
            const aiMesh *mesh = scene->mMeshes[i];
            for(UInt32 f = 0; f < mesh->mNumFaces; ++f)
                triangles += std::max<UInt32>(mesh->mFaces[f].mNumIndices, 3) - 2;
            vertices += mesh->mNumVertices;
        }

        if(triangles > handler.getMaxTriangles() ||
           vertices > 3 * handler.getMaxTriangles())
        {
            SWARNING << "could not read " << what << "; " << triangles
                     << " triangles and " << vertices << " vertices, more than "
                     << "the budget of " << handler.getMaxTriangles()
                     << " triangles (see SceneFileHandler::setMaxTriangles)"
                     << std::endl;
            return NullFC;
        }
        if(triangles == 0)
        {
            SWARNING << "could not read " << what << "; it holds no meshes"
                     << std::endl;
            return NullFC;
        }

        return SceneBuilder(scene, fromFile ? name : std::string()).build();
    }
    catch(const std::exception &e)
    {
        SWARNING << "could not read " << what << "; " << e.what() << std::endl;
    }
    catch(...)
    {
        SWARNING << "could not read " << what << "; the reader failed" << std::endl;
    }
    return NullFC;
}

bool AssimpSceneFileType::exportScene(const NodePtr &node, const Char8 *formatId,
                                      const Char8 *fileName, std::ostream *os,
                                      const std::string &what) const
{
    if(formatId == NULL)
    {
        SWARNING << "can't write " << what << "; " << _name
                 << " keeps its data in several files, write a file" << std::endl;
        return false;
    }

    routeAssimpLog();

    try
    {
        aiScene       scene;
        SceneExporter fill(&scene);

        if(!fill.fill(node))
        {
            SWARNING << "can't write " << what << "; the scene holds no triangles"
                     << std::endl;
            return false;
        }

        // PLY and STL keep no hierarchy: their meshes go out transformed
        const std::string id(formatId);
        const unsigned int steps = id.compare(0, 3, "ply") == 0 ||
                                           id.compare(0, 3, "stl") == 0
                                       ? unsigned(aiProcess_PreTransformVertices)
                                       : 0u;
        Assimp::Exporter exporter;

        if(fileName != NULL)
        {
            if(exporter.Export(&scene, formatId, fileName, steps) == AI_SUCCESS)
                return true;
        }
        else if(const aiExportDataBlob *blob =
                    exporter.ExportToBlob(&scene, formatId, steps))
        {
            os->write(static_cast<const char *>(blob->data),
                      std::streamsize(blob->size));
            if(*os)
                return true;
        }

        SWARNING << "can't write " << what << "; " << exporter.GetErrorString()
                 << std::endl;
    }
    catch(const std::exception &e)
    {
        SWARNING << "can't write " << what << "; " << e.what() << std::endl;
    }
    catch(...)
    {
        SWARNING << "can't write " << what << "; the writer failed" << std::endl;
    }
    return false;
}

bool AssimpSceneFileType::write(const NodePtr &node, std::ostream &os,
                                const Char8 *fileNameOrExtension) const
{
    const std::string name(fileNameOrExtension != NULL ? fileNameOrExtension : "");

    return exportScene(node, info(name).streamExport, NULL, &os,
                       "a stream of type '" + name + "'");
}

bool AssimpSceneFileType::writeFile(const NodePtr &node, const Char8 *fileName) const
{
    const std::string name(fileName != NULL ? fileName : "");

    return exportScene(node, info(name).fileExport, name.c_str(), NULL, name);
}

// --- the registered formats ----------------------------------------------------

const UInt32 ReadWrite =
    SceneFileType::OSG_READ_SUPPORTED | SceneFileType::OSG_WRITE_SUPPORTED;

const Char8     *objSuffixes[] = {"obj"};
const SuffixInfo objInfos[]    = {{"obj", "obj", "obj", "objnomtl"}};
AssimpSceneFileType objType("Wavefront OBJ", objSuffixes, sizeof(objSuffixes),
                            objInfos, 1, ReadWrite);

const Char8     *plySuffixes[] = {"ply"};
const SuffixInfo plyInfos[]    = {{"ply", "ply", "plyb", "plyb"}};
AssimpSceneFileType plyType("Stanford PLY", plySuffixes, sizeof(plySuffixes),
                            plyInfos, 1, ReadWrite);

// "stl" and "stlb" are written binary, "stla" as text
const Char8     *stlSuffixes[] = {"stl", "stla", "stlb"};
const SuffixInfo stlInfos[]    = {{"stl", "stl", "stlb", "stlb"},
                                  {"stla", "stl", "stl", "stl"},
                                  {"stlb", "stl", "stlb", "stlb"}};
AssimpSceneFileType stlType("STL", stlSuffixes, sizeof(stlSuffixes), stlInfos,
                            3, ReadWrite);

// a .gltf keeps its buffers in a .bin beside it: no stream form
const Char8     *gltfSuffixes[] = {"gltf"};
const SuffixInfo gltfInfos[]    = {{"gltf", "gltf", "gltf2", NULL}};
AssimpSceneFileType gltfType("glTF", gltfSuffixes, sizeof(gltfSuffixes),
                             gltfInfos, 1, ReadWrite);

const Char8     *glbSuffixes[] = {"glb"};
const SuffixInfo glbInfos[]    = {{"glb", "glb", "glb2", "glb2"}};
AssimpSceneFileType glbType("glTF binary", glbSuffixes, sizeof(glbSuffixes),
                            glbInfos, 1, ReadWrite);

const Char8     *offSuffixes[] = {"off"};
const SuffixInfo offInfos[]    = {{"off", "off", NULL, NULL}};
AssimpSceneFileType offType("OFF", offSuffixes, sizeof(offSuffixes), offInfos,
                            1, SceneFileType::OSG_READ_SUPPORTED);

} // namespace

OSG_END_NAMESPACE

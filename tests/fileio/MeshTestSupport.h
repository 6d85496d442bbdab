// Helpers shared by the scene file tests: files written byte by byte, and
// what a loaded graph holds (its geometries, world-space triangles).
#ifndef _MESHTESTSUPPORT_H_
#define _MESHTESTSUPPORT_H_

#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGTriangleIterator.h>

#include <support/ScratchDir.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace meshtest
{

using namespace osg;

inline std::string path(const std::string &name)
{
    return corvanetest::scratchPath(name);
}

inline void putFile(const std::string &name, const std::string &bytes)
{
    std::ofstream os(name.c_str(), std::ios::binary | std::ios::trunc);
    os.write(bytes.data(), std::streamsize(bytes.size()));
}

inline std::string getFile(const std::string &name)
{
    std::ifstream is(name.c_str(), std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(is)),
                       std::istreambuf_iterator<char>());
}

/// Appends the raw bytes of a little-endian value (the test hosts are
/// little-endian, as the PLY and STL layouts written here are).
template <class T> void putRaw(std::string &out, T value)
{
    char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof(T));
    out.append(bytes, sizeof(T));
}

/// Every Geometry core under root, each once, in traversal order.
inline std::vector<NodePtr> geometryNodes(const NodePtr &root)
{
    std::vector<NodePtr> found, stack(1, root);

    while(!stack.empty())
    {
        NodePtr n = stack.back();
        stack.pop_back();
        if(n == NullFC)
            continue;
        if(GeometryPtr::dcast(n->getCore()) != NullFC)
            found.push_back(n);
        for(UInt32 i = n->getNChildren(); i > 0; --i)
            stack.push_back(n->getChild(i - 1));
    }
    return found;
}

inline GeometryPtr onlyGeometry(const NodePtr &root)
{
    const std::vector<NodePtr> nodes = geometryNodes(root);
    return nodes.size() == 1 ? GeometryPtr::dcast(nodes[0]->getCore()) : NullFC;
}

typedef std::array<Real32, 9>               Triangle;
typedef std::array<std::array<Real32, 3>, 3> Corners;

/// The triangle of three corners, rotated to start at its smallest corner
/// (the winding kept): the same triangle always gives the same value.
inline Triangle canonicalTriangle(const Corners &c)
{
    const Int32 first = Int32(std::min_element(c.begin(), c.end()) - c.begin());
    Triangle    t;
    for(Int32 k = 0; k < 3; ++k)
        for(Int32 a = 0; a < 3; ++a)
            t[k * 3 + a] = c[(first + k) % 3][a];
    return t;
}

/// Every triangle of the graph in world space, each rotated to start at
/// its smallest corner (winding kept) and rounded to 1e-4, sorted: two
/// graphs showing the same surface give the same list.
inline std::vector<Triangle> worldTriangles(const NodePtr &root)
{
    std::vector<Triangle> out;

    for(NodePtr n : geometryNodes(root))
    {
        Matrix toWorld;
        n->getToWorld(toWorld);

        for(TriangleIterator it(n); !it.isAtEnd(); ++it)
        {
            Corners c;
            for(Int32 k = 0; k < 3; ++k)
            {
                Pnt3f p = it.getPosition(k);
                toWorld.multFullMatrixPnt(p);
                for(Int32 a = 0; a < 3; ++a)
                    c[k][a] = std::round(p[a] * 1e4f) / 1e4f + 0.f;
            }
            out.push_back(canonicalTriangle(c));
        }
    }
    std::sort(out.begin(), out.end());
    return out;
}

/// Warning lines in a captured log.
inline size_t lineCount(const std::string &log)
{
    return size_t(std::count(log.begin(), log.end(), '\n'));
}

/// Reads fileName through the handler, capturing warnings.
inline NodePtr readLogged(const std::string &fileName, std::string &log)
{
    LogCapture capture(LOG_WARNING);
    NodePtr    root = SceneFileHandler::the().read(fileName.c_str());
    log             = capture.take();
    return root;
}

/// Holds a loaded graph for the test's duration.
struct Held
{
    explicit Held(NodePtr n) : node(n)
    {
        if(node != NullFC)
            addRefCP(node);
    }
    ~Held()
    {
        if(node != NullFC)
            subRefCP(node);
    }
    Held(const Held &)            = delete;
    Held &operator=(const Held &) = delete;

    NodePtr node;
};

} // namespace meshtest

#endif

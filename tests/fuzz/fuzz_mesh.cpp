// libFuzzer target: arbitrary bytes through SceneFileHandler's stream form.
// The first byte chooses the format (its value modulo the number of
// suffixes below), the rest is the file. Whatever the input, read must
// return a scene or NullFC without crashing, leaking or touching memory it
// does not own; every geometry of a scene must index inside its vertices.
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSceneFileHandler.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace
{

const char *const suffixes[] = {"obj", "ply", "stl", "gltf", "glb", "off"};

void checkGeometry(const osg::GeometryPtr &geo)
{
    const osg::UInt32 vertices = geo->getPositions() != osg::NullFC
                                     ? geo->getPositions()->getSize()
                                     : 0;
    osg::UInt32 indices = 0;

    if(geo->getIndices() != osg::NullFC)
    {
        indices = geo->getIndices()->getSize();
        for(osg::UInt32 i = 0; i < indices; ++i)
            if(geo->getIndices()->getValue(i) >= vertices)
                std::abort();
    }

    osg::UInt64 total = 0;
    if(geo->getLengths() != osg::NullFC)
        for(osg::UInt32 i = 0; i < geo->getLengths()->getSize(); ++i)
            total += geo->getLengths()->getValue(i);
    if(total != indices)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // Every rejected input logs a line; that only slows the fuzzer down.
    osg::osgLog().setLogType(osg::LOG_NONE, true);
    osg::osgInit(0, NULL);
    // small inputs only: the target looks for bad reads, not for memory
    osg::SceneFileHandler::the().setMaxTriangles(1 << 16);
    osg::SceneFileHandler::the().setMaxFileBytes(1 << 22);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if(size < 1)
        return 0;

    const char *suffix = suffixes[data[0] % (sizeof(suffixes) / sizeof(suffixes[0]))];
    std::istringstream in(std::string(reinterpret_cast<const char *>(data + 1), size - 1));
    osg::NodePtr root = osg::SceneFileHandler::the().read(in, suffix, NULL);

    if(root == osg::NullFC)
        return 0;

    osg::addRefCP(root);
    std::vector<osg::NodePtr> stack(1, root);
    while(!stack.empty())
    {
        osg::NodePtr n = stack.back();
        stack.pop_back();
        if(osg::GeometryPtr geo = osg::GeometryPtr::dcast(n->getCore()))
            checkGeometry(geo);
        for(osg::UInt32 i = 0; i < n->getNChildren(); ++i)
            stack.push_back(n->getChild(i));
    }
    osg::subRefCP(root);
    return 0;
}

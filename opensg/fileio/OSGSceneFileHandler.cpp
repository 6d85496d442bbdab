#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <zlib.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <istream>
#include <ostream>
#include <sstream>

OSG_BEGIN_NAMESPACE

SceneFileHandler *SceneFileHandler::_the               = NULL;
GraphOpSeq       *SceneFileHandler::_defaultgraphOpSeq = NULL;

namespace
{

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

/// The suffix that names the type: after the last '.', or the whole text;
/// "x.obj.gz" gives "obj".
std::string typeSuffixOf(const std::string &name)
{
    const size_t slash = name.find_last_of("/\\");
    const std::string base =
        slash == std::string::npos ? name : name.substr(slash + 1);
    size_t dot = base.rfind('.');

    if(dot == std::string::npos)
        return lowerCase(base);

    std::string suffix = lowerCase(base.substr(dot + 1));

    if(suffix == "gz")
    {
        const std::string inner = base.substr(0, dot);
        const size_t      innerDot = inner.rfind('.');

        suffix = lowerCase(innerDot == std::string::npos
                               ? inner
                               : inner.substr(innerDot + 1));
    }
    return suffix;
}

bool isGzip(const std::vector<UInt8> &data)
{
    return data.size() >= 2 && data[0] == 0x1f && data[1] == 0x8b;
}

bool endsWithGz(const std::string &name)
{
    return name.size() > 3 && lowerCase(name.substr(name.size() - 3)) == ".gz";
}

/// Inflates a gzip stream (concatenated members count as one), keeping at
/// most limit + 1 bytes so that the caller can tell an oversized one.
bool gunzipBounded(const std::vector<UInt8> &in, UInt64 limit,
                   std::vector<UInt8> &out)
{
    out.clear();

    z_stream zs;
    std::memset(&zs, 0, sizeof(zs));
    if(inflateInit2(&zs, 15 + 16) != Z_OK)
        return false;

    const UInt8 *next = in.data();
    UInt64       left = in.size();
    int          ret  = Z_OK;
    UInt8        chunk[65536];

    while(left > 0 && out.size() <= limit)
    {
        const uInt take = uInt(std::min<UInt64>(left, 1u << 30));

        zs.next_in  = const_cast<Bytef *>(next);
        zs.avail_in = take;

        do
        {
            zs.next_out  = chunk;
            zs.avail_out = sizeof(chunk);
            ret          = inflate(&zs, Z_NO_FLUSH);
            if(ret != Z_OK && ret != Z_STREAM_END)
            {
                inflateEnd(&zs);
                return false;
            }
            const size_t got = sizeof(chunk) - zs.avail_out;
            const size_t keep =
                size_t(std::min<UInt64>(got, limit + 1 - out.size()));
            out.insert(out.end(), chunk, chunk + keep);
        } while(zs.avail_out == 0 && ret != Z_STREAM_END && out.size() <= limit);

        const uInt used = take - zs.avail_in;
        next += used;
        left -= used;

        if(ret == Z_STREAM_END)
        {
            // another member may follow; trailing zeros end the stream
            if(left < 2 || next[0] != 0x1f || next[1] != 0x8b)
                break;
            inflateReset(&zs);
        }
        else if(used == 0 && zs.avail_out != 0)
        {
            break;
        }
    }

    inflateEnd(&zs);
    return ret == Z_STREAM_END || out.size() > limit;
}

} // namespace

SceneFileHandler &SceneFileHandler::the(void)
{
    if(_the == NULL)
        _the = new SceneFileHandler;

    return *_the;
}

SceneFileHandler::SceneFileHandler(void)
    : _suffixTypeMap(),
      _pathHandler(NULL),
      _defaultPathHandler(),
      _progressFP(NULL),
      _beginFP(NULL),
      _endFP(NULL),
      _maxTriangles(DefaultMaxTriangles),
      _maxFileBytes(DefaultMaxFileBytes)
{
    _defaultPathHandler.push_backCurrentDir();

    if(_defaultgraphOpSeq == NULL)
        _defaultgraphOpSeq =
            new GraphOpSeq("Stripe() SharePtr(includes=Material,StateChunk)");
}

SceneFileHandler::~SceneFileHandler(void)
{
}

bool SceneFileHandler::addSceneFileType(SceneFileType &fileType)
{
    SceneFileHandler &handler = the();
    bool              added   = false;

    for(const IDString &s : fileType.suffixList())
    {
        const std::string         suffix = s.str() != NULL ? s.str() : "";
        std::list<SceneFileType *> &types = handler._suffixTypeMap[suffix];

        if(!types.empty() && fileType.doOverride() &&
           fileType.getOverridePriority() > types.front()->getOverridePriority())
            types.push_front(&fileType);
        else
            types.push_back(&fileType);
        added = true;
    }

    return added;
}

SceneFileType *SceneFileHandler::getFileType(const Char8 *fileNameOrExtension)
{
    if(fileNameOrExtension == NULL)
        return NULL;

    FileTypeMap::iterator it =
        _suffixTypeMap.find(typeSuffixOf(fileNameOrExtension));

    if(it == _suffixTypeMap.end() || it->second.empty())
        return NULL;

    return it->second.front();
}

Int32 SceneFileHandler::getSuffixList(std::list<const Char8 *> &suffixList,
                                      UInt32                    flags)
{
    suffixList.clear();

    for(FileTypeMap::iterator it = _suffixTypeMap.begin();
        it != _suffixTypeMap.end(); ++it)
    {
        if(!it->second.empty() &&
           (it->second.front()->getFlags() & flags) == flags)
            suffixList.push_back(it->first.c_str());
    }

    return Int32(suffixList.size());
}

NodePtr SceneFileHandler::readData(SceneFileType            *type,
                                   const std::vector<UInt8> &data,
                                   const Char8              *fileNameOrExtension,
                                   const std::string        &what,
                                   GraphOpSeq               *graphOpSeq)
{
    std::vector<UInt8>        inflated;
    const std::vector<UInt8> *bytes = &data;

    if(isGzip(data) && data.size() <= _maxFileBytes)
    {
        if(!gunzipBounded(data, _maxFileBytes, inflated))
        {
            SWARNING << "could not read " << what << "; corrupt gzip data"
                     << std::endl;
            return NullFC;
        }
        bytes = &inflated;
    }

    if(bytes->size() > _maxFileBytes)
    {
        SWARNING << "could not read " << what << "; more than "
                 << _maxFileBytes << " bytes (see SceneFileHandler::"
                 << "setMaxFileBytes)" << std::endl;
        return NullFC;
    }

    if(_progressFP != NULL)
        _progressFP(0);

    NodePtr root = type->readMemory(bytes->data(), bytes->size(),
                                    fileNameOrExtension);

    if(root != NullFC && graphOpSeq != NULL)
        graphOpSeq->run(root);

    if(_progressFP != NULL)
        _progressFP(100);

    return root;
}

NodePtr SceneFileHandler::read(std::istream &is,
                               const Char8  *fileNameOrExtension,
                               GraphOpSeq   *graphOpSeq)
{
    const std::string name = fileNameOrExtension != NULL ? fileNameOrExtension : "";
    SceneFileType    *type = getFileType(name.c_str());

    if(type == NULL)
    {
        SWARNING << "could not read a stream of type '" << name
                 << "'; unknown file format" << std::endl;
        return NullFC;
    }

    std::vector<UInt8> data;

    if(!volumeReadStream(is, _maxFileBytes + 1, data))
    {
        SWARNING << "could not read a stream of type '" << name
                 << "'; read error" << std::endl;
        return NullFC;
    }

    return readData(type, data, typeSuffixOf(name).c_str(),
                    "a stream of type '" + name + "'", graphOpSeq);
}

SceneFileHandler::FCPtrStore SceneFileHandler::readTopNodes(
    std::istream &is, const Char8 *fileNameOrExtension, GraphOpSeq *graphOpSeq)
{
    FCPtrStore store;
    NodePtr    root = read(is, fileNameOrExtension, graphOpSeq);

    if(root != NullFC)
        store.push_back(root);
    return store;
}

NodePtr SceneFileHandler::read(const Char8 *fileName, GraphOpSeq *graphOpSeq)
{
    if(fileName == NULL)
    {
        SWARNING << "cannot read NULL file" << std::endl;
        return NullFC;
    }

    PathHandler *paths = _pathHandler != NULL ? _pathHandler : &_defaultPathHandler;
    const std::string fullPath = paths->findFile(fileName);

    if(fullPath.empty())
    {
        SWARNING << "Couldn't open file " << fileName << std::endl;
        return NullFC;
    }

    SceneFileType *type = getFileType(fullPath.c_str());

    if(type == NULL)
    {
        SWARNING << "could not read " << fullPath << "; unknown file format"
                 << std::endl;
        return NullFC;
    }

    // the raw bytes, compressed or not: a gzip file may not hold more than
    // the budget either, and a FIFO or device is refused by the open
    std::vector<UInt8> data;

    if(!volumeReadFile(fullPath, 0, _maxFileBytes + 1, false, data))
        return NullFC;

    if(_beginFP != NULL)
        _beginFP(fileName);

    NodePtr root = readData(type, data, fullPath.c_str(), fullPath, graphOpSeq);

    if(_endFP != NULL)
        _endFP(fileName);

    return root;
}

SceneFileHandler::FCPtrStore SceneFileHandler::readTopNodes(
    const Char8 *fileName, GraphOpSeq *graphOpSeq)
{
    FCPtrStore store;
    NodePtr    root = read(fileName, graphOpSeq);

    if(root != NullFC)
        store.push_back(root);
    return store;
}

bool SceneFileHandler::write(const NodePtr &node, std::ostream &os,
                             const Char8 *fileNameOrExtension, bool compress)
{
    const std::string name = fileNameOrExtension != NULL ? fileNameOrExtension : "";
    SceneFileType    *type = getFileType(name.c_str());

    if(type == NULL || (type->getFlags() & SceneFileType::OSG_WRITE_SUPPORTED) == 0)
    {
        SWARNING << "can't write a stream of type '" << name
                 << "'; unknown file format" << std::endl;
        return false;
    }
    if(node == NullFC)
    {
        SWARNING << "can't write a stream of type '" << name << "'; no node"
                 << std::endl;
        return false;
    }

    if(!compress)
        return type->write(node, os, typeSuffixOf(name).c_str());

    std::ostringstream plain;

    if(!type->write(node, plain, typeSuffixOf(name).c_str()))
        return false;

    const std::string text = plain.str();
    z_stream          zs;
    std::memset(&zs, 0, sizeof(zs));
    if(deflateInit2(&zs, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15 + 16, 8,
                    Z_DEFAULT_STRATEGY) != Z_OK)
        return false;

    std::vector<UInt8> out(deflateBound(&zs, uLong(text.size())));
    zs.next_in   = reinterpret_cast<Bytef *>(const_cast<char *>(text.data()));
    zs.avail_in  = uInt(text.size());
    zs.next_out  = out.data();
    zs.avail_out = uInt(out.size());
    const int ret = deflate(&zs, Z_FINISH);
    out.resize(zs.total_out);
    deflateEnd(&zs);

    if(ret != Z_STREAM_END)
    {
        SWARNING << "can't write a stream of type '" << name
                 << "'; compression failed" << std::endl;
        return false;
    }

    os.write(reinterpret_cast<const char *>(out.data()), std::streamsize(out.size()));
    return bool(os);
}

bool SceneFileHandler::write(const NodePtr &node, const Char8 *fileName,
                             bool compress)
{
    const std::string name = fileName != NULL ? fileName : "";
    SceneFileType    *type = getFileType(name.c_str());

    if(type == NULL || (type->getFlags() & SceneFileType::OSG_WRITE_SUPPORTED) == 0)
    {
        SWARNING << "can't write " << name << "; unknown file format" << std::endl;
        return false;
    }
    if(node == NullFC)
    {
        SWARNING << "can't write " << name << "; no node" << std::endl;
        return false;
    }

    if(!compress && !endsWithGz(name))
        return type->writeFile(node, name.c_str());

    std::ofstream os(name.c_str(), std::ios::binary | std::ios::trunc);

    if(!os)
    {
        SWARNING << "can't write " << name << "; the file can't be created"
                 << std::endl;
        return false;
    }

    return write(node, os, name.c_str(), true);
}

PathHandler *SceneFileHandler::getPathHandler(void)
{
    return _pathHandler;
}

void SceneFileHandler::setPathHandler(PathHandler *pathHandler)
{
    _pathHandler = pathHandler;
}

GraphOpSeq *SceneFileHandler::getDefaultGraphOp(void)
{
    the();
    return _defaultgraphOpSeq;
}

void SceneFileHandler::setDefaultGraphOp(GraphOpSeq *graphOpSeq)
{
    the();
    _defaultgraphOpSeq = graphOpSeq;
}

bool SceneFileHandler::setOptions(const Char8 *suffix, const Char8 *options)
{
    SceneFileType *type = getFileType(suffix);

    if(type == NULL)
        return false;

    type->setOptions(options);
    return true;
}

const Char8 *SceneFileHandler::getOptions(const Char8 *suffix)
{
    SceneFileType *type = getFileType(suffix);

    return type != NULL ? type->getOptions() : NULL;
}

void SceneFileHandler::setReadProgressCB(progresscbfp fp)
{
    _progressFP = fp;
}

SceneFileHandler::progresscbfp SceneFileHandler::getReadProgressCB(void)
{
    return _progressFP;
}

void SceneFileHandler::setReadBeginCB(filenamecbfp fp)
{
    _beginFP = fp;
}

void SceneFileHandler::setReadEndCB(filenamecbfp fp)
{
    _endFP = fp;
}

void SceneFileHandler::print(void)
{
    for(FileTypeMap::iterator it = _suffixTypeMap.begin();
        it != _suffixTypeMap.end(); ++it)
    {
        for(SceneFileType *type : it->second)
            SLOG << "Scene suffix: " << it->first << ", type: "
                 << type->getName() << std::endl;
    }
}

void SceneFileHandler::setMaxTriangles(UInt64 triangles)
{
    // vertices may number three times the triangles: keep that from wrapping
    _maxTriangles = triangles == 0 ? DefaultMaxTriangles : std::min(triangles, UInt64(1) << 60);
}

UInt64 SceneFileHandler::getMaxTriangles(void) const
{
    return _maxTriangles;
}

void SceneFileHandler::setMaxFileBytes(UInt64 bytes)
{
    // the readers ask for one byte more than the budget to tell an
    // oversized file: keep that sum from wrapping
    _maxFileBytes = bytes == 0 ? DefaultMaxFileBytes : std::min(bytes, UInt64(1) << 62);
}

UInt64 SceneFileHandler::getMaxFileBytes(void) const
{
    return _maxFileBytes;
}

OSG_END_NAMESPACE

#include <OpenSG/OSGSceneFileType.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <algorithm>
#include <cctype>
#include <istream>

OSG_BEGIN_NAMESPACE

SceneFileType::SceneFileType(const Char8 *suffixArray[],
                             UInt16       suffixByteCount,
                             bool         override,
                             UInt32       overridePriority,
                             UInt32       flags)
    : _suffixList(),
      _override(override),
      _overridePriority(overridePriority),
      _flags(flags),
      _options()
{
    const UInt32 count = suffixByteCount / sizeof(const Char8 *);

    for(UInt32 i = 0; i < count; ++i)
    {
        if(suffixArray[i] == NULL)
            continue;

        std::string suffix(suffixArray[i]);
        std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                       [](unsigned char c) { return char(std::tolower(c)); });
        _suffixList.push_back(IDString(suffix.c_str()));
    }

    SceneFileHandler::addSceneFileType(*this);
}

SceneFileType::~SceneFileType(void)
{
}

std::list<IDString> &SceneFileType::suffixList(void)
{
    return _suffixList;
}

bool SceneFileType::doOverride(void)
{
    return _override;
}

UInt32 SceneFileType::getOverridePriority(void)
{
    return _overridePriority;
}

UInt32 SceneFileType::getFlags(void)
{
    return _flags;
}

void SceneFileType::setOptions(const Char8 *options)
{
    _options = options != NULL ? options : "";
}

const Char8 *SceneFileType::getOptions(void)
{
    return _options.c_str();
}

NodePtr SceneFileType::read(std::istream &is,
                            const Char8  *fileNameOrExtension) const
{
    const UInt64       limit = SceneFileHandler::the().getMaxFileBytes();
    std::vector<UInt8> data;

    if(!volumeReadStream(is, limit + 1, data))
    {
        SWARNING << "could not read a " << getName() << " stream; read error"
                 << std::endl;
        return NullFC;
    }
    if(data.size() > limit)
    {
        SWARNING << "could not read a " << getName() << " stream; more than "
                 << limit << " bytes" << std::endl;
        return NullFC;
    }

    return readMemory(data.data(), data.size(),
                      fileNameOrExtension != NULL ? fileNameOrExtension : "");
}

SceneFileType::FCPtrStore SceneFileType::readTopNodes(
    std::istream &is, const Char8 *fileNameOrExtension) const
{
    FCPtrStore store;
    NodePtr    root = read(is, fileNameOrExtension);

    if(root == NullFC)
        return store;

    addRefCP(root);
    while(root->getNChildren() > 0)
    {
        NodePtr child = root->getChild(0);

        addRefCP(child);
        beginEditCP(root, Node::ChildrenFieldMask);
        root->subChild(child);
        endEditCP(root, Node::ChildrenFieldMask);
        store.push_back(child);
    }
    subRefCP(root);

    return store;
}

NodePtr SceneFileType::readMemory(const UInt8 *, UInt64, const Char8 *) const
{
    SWARNING << getName() << ": reading is not supported" << std::endl;
    return NullFC;
}

bool SceneFileType::write(const NodePtr &, std::ostream &, const Char8 *) const
{
    SWARNING << getName() << ": writing is not supported" << std::endl;
    return false;
}

bool SceneFileType::writeFile(const NodePtr &, const Char8 *) const
{
    SWARNING << getName() << ": writing is not supported" << std::endl;
    return false;
}

void SceneFileType::print(void)
{
    std::string suffixes;

    for(const IDString &s : _suffixList)
        suffixes += std::string(suffixes.empty() ? "" : " ") + s.str();

    SLOG << getName() << ": suffixes " << suffixes
         << ((_flags & OSG_READ_SUPPORTED) ? ", reads" : "")
         << ((_flags & OSG_WRITE_SUPPORTED) ? ", writes" : "") << std::endl;
}

OSG_END_NAMESPACE

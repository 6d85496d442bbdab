#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <ostream>
#include <sys/stat.h>
#include <unistd.h>

OSG_BEGIN_NAMESPACE

ImageFileHandler *ImageFileHandler::_the = NULL;

namespace
{

const Char8 *FileNameKey     = "fileName";
const Char8 *FullFilePathKey = "fullFilePath";

std::string trimmedLower(const std::string &text)
{
    const char  *blanks = " \t\r\n";
    const size_t first  = text.find_first_not_of(blanks);

    if(first == std::string::npos)
        return std::string();

    std::string out = text.substr(first, text.find_last_not_of(blanks) - first + 1);

    std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) {
        return char(std::tolower(c));
    });

    return out;
}

std::string normalisedMime(const std::string &mimeType)
{
    return trimmedLower(mimeType.substr(0, mimeType.find(';')));
}

// The text after the last '.', normalised; "" when there is no '.'. A
// compressed file keeps the suffix before ".gz" too ("nii.gz").
std::string normalisedSuffixOf(const std::string &fileName)
{
    const size_t dot = fileName.rfind('.');

    if(dot == std::string::npos)
        return std::string();

    const std::string suffix = trimmedLower(fileName.substr(dot + 1));
    const size_t      slash  = fileName.find_last_of("/\\");
    const size_t      inner  = dot > 0 ? fileName.rfind('.', dot - 1)
                                       : std::string::npos;

    if(suffix == "gz" && inner != std::string::npos &&
       (slash == std::string::npos || inner > slash))
        return trimmedLower(fileName.substr(inner + 1));

    return suffix;
}

bool isDirectory(const std::string &path)
{
    struct stat info;

    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isAbsolutePath(const std::string &path)
{
    return !path.empty() &&
           (path[0] == '/' || path[0] == '\\' ||
            (path.size() > 1 && path[1] == ':'));
}

std::string absolutePath(const std::string &path)
{
    if(isAbsolutePath(path))
        return path;

    char cwd[PATH_MAX];

    if(getcwd(cwd, sizeof(cwd)) == NULL)
        return path;

    return std::string(cwd) + "/" + path;
}

} // namespace

ImageFileHandler &ImageFileHandler::the(void)
{
    if(_the == NULL)
        _the = new ImageFileHandler;

    return *_the;
}

ImageFileHandler::ImageFileHandler(void)
    : _suffixTypeMap(),
      _mimeTypeMap(),
      _readFP(NULL),
      _maxImageBytes(MaxImageBytesCeiling),
      _allowOutsideDataFiles(false),
      _pathHandler(NULL)
{
    const char *outside = std::getenv("OSG_ALLOW_OUTSIDE_DATA_FILES");

    _allowOutsideDataFiles = outside != NULL && std::strcmp(outside, "1") == 0;
}

ImageFileHandler::~ImageFileHandler(void)
{
}

bool ImageFileHandler::addImageFileType(ImageFileType &fileType)
{
    ImageFileHandler &handler = the();
    bool              added   = false;

    for(const IDString &s : fileType.getSuffixList())
    {
        const std::string suffix = trimmedLower(s.str() != NULL ? s.str() : "");

        if(handler._suffixTypeMap.count(suffix) != 0)
        {
            SWARNING << "Can't add an image file type with suffix " << suffix
                     << " a second time" << std::endl;
            continue;
        }

        handler._suffixTypeMap[suffix] = &fileType;
        added                          = true;
    }

    const std::string mime =
        normalisedMime(fileType.getMimeType() != NULL ? fileType.getMimeType() : "");

    if(handler._mimeTypeMap.count(mime) != 0)
    {
        SWARNING << "Can't add an image file type with mimetype " << mime
                 << " a second time" << std::endl;
    }
    else
    {
        handler._mimeTypeMap[mime] = &fileType;
    }

    return added;
}

ImageFileType *ImageFileHandler::getFileType(const Char8 *mimeType,
                                             const Char8 *fileName,
                                             bool         validateHeader)
{
    ImageFileType *type = NULL;

    if(mimeType != NULL && *mimeType != '\0')
    {
        std::string mime = normalisedMime(mimeType);

        if(mime.find('/') == std::string::npos)
            mime = "image/" + mime;

        TypeMap::iterator it = _mimeTypeMap.find(mime);

        if(it != _mimeTypeMap.end())
            type = it->second;
        else
            FWARNING(("Invalid mimeType %s in getFileType()\n", mimeType));
    }

    if(type == NULL && fileName != NULL && *fileName != '\0')
    {
        const std::string suffix = normalisedSuffixOf(fileName);

        if(!suffix.empty())
        {
            TypeMap::iterator it = _suffixTypeMap.find(suffix);

            if(it != _suffixTypeMap.end())
                type = it->second;
        }
    }

    if(validateHeader && type != NULL && fileName != NULL && *fileName != '\0')
    {
        bool implemented = false;

        if(!type->validateHeader(fileName, implemented))
        {
            FWARNING(("Found wrong image header trying to autodetect image "
                      "type!\n"));

            for(TypeMap::iterator it = _suffixTypeMap.begin();
                it != _suffixTypeMap.end(); ++it)
            {
                implemented = false;

                if(it->second->validateHeader(fileName, implemented) &&
                   implemented)
                {
                    // A header that names other files must not get in
                    // under another format's name: "upload.png" that is
                    // a NRRD could pull any file into the image.
                    if((it->second->getFlags() &
                        ImageFileType::OSG_NAMES_OTHER_FILES) != 0)
                    {
                        FWARNING(("%s looks like a '%s' file, which may name "
                                  "other files, but is not named so; not "
                                  "read\n", fileName, it->first.c_str()));
                        return NULL;
                    }
                    FWARNING(("Autodetected '%s' image type!\n",
                              it->first.c_str()));
                    return it->second;
                }
            }

            FWARNING(("Couldn't autodetect image type!\n"));
            return NULL;
        }
    }

    return type;
}

ImageFileType *ImageFileHandler::getDefaultType(void)
{
    TypeMap::iterator it = _suffixTypeMap.find("opensg");

    if(it == _suffixTypeMap.end())
    {
        FFATAL(("Can not find any default (suffix:%s) image handler\n",
                "opensg"));
        return NULL;
    }

    return it->second;
}

ImagePtr ImageFileHandler::read(const Char8 *fileName, const Char8 *mimeType)
{
    if(_readFP != NULL)
        return _readFP(fileName, mimeType);

    ImagePtr image = Image::create();

    if(!read(image, fileName, mimeType))
    {
        subRefCP(image);
        image = NullFC;
    }

    return image;
}

PathHandler *ImageFileHandler::getPathHandler(void)
{
    return _pathHandler;
}

void ImageFileHandler::setPathHandler(PathHandler *pathHandler)
{
    _pathHandler = pathHandler;
}

bool ImageFileHandler::read(ImagePtr    &image,
                            const Char8 *fileName,
                            const Char8 *mimeType)
{
    const std::string fullPath = fileName == NULL        ? ""
                                 : _pathHandler != NULL ? _pathHandler->findFile(fileName)
                                                        : fileName;

    if(fullPath.empty())
    {
        SWARNING << "couldn't find image file " << fullPath << std::endl;
        return false;
    }

    if(image == NullFC)
    {
        SWARNING << "could not read " << fullPath << "; no image to read into"
                 << std::endl;
        return false;
    }

    // A folder is a series of slices, read by the type that reads folders.
    if(isDirectory(fullPath))
        return readFolder(image, fileName, fullPath, mimeType);

    // A FIFO would block the header check, a device would never end.
    UInt64    size = 0;
    const int fd   = volumeOpenRegularFile(fullPath, size, "ImageFileHandler");

    if(fd < 0)
        return false;
    volumeCloseFile(fd);

    ImageFileType *type = getFileType(mimeType, fullPath.c_str(), true);

    if(type == NULL)
    {
        SWARNING << "could not read " << fullPath << "; unknown image format"
                 << std::endl;
        return false;
    }

    if(!type->read(image, fullPath.c_str()))
    {
        SWARNING << "could not read " << fullPath << std::endl;
        return false;
    }

    noteSource(image, fileName, fullPath);
    return true;
}

bool ImageFileHandler::readFolder(ImagePtr          &image,
                                  const Char8       *fileName,
                                  const std::string &fullPath,
                                  const Char8       *mimeType)
{
    ImageFileType *type = NULL;

    if(mimeType != NULL && *mimeType != '\0')
        type = getFileType(mimeType);

    for(TypeMap::iterator it = _mimeTypeMap.begin();
        type == NULL && it != _mimeTypeMap.end(); ++it)
    {
        if((it->second->getFlags() & ImageFileType::OSG_READS_FOLDERS) != 0)
            type = it->second;
    }

    if(type == NULL ||
       (type->getFlags() & ImageFileType::OSG_READS_FOLDERS) == 0)
    {
        SWARNING << "ImageFileHandler: " << fullPath << " is not a regular "
                 << "file, and no image format reads folders" << std::endl;
        return false;
    }

    if(!type->read(image, fullPath.c_str()))
    {
        SWARNING << "ImageFileHandler: " << fullPath << " is not a regular "
                 << "file, and no series of slices was read from it"
                 << std::endl;
        return false;
    }

    noteSource(image, fileName, fullPath);
    return true;
}

void ImageFileHandler::noteSource(ImagePtr          &image,
                                  const Char8       *fileName,
                                  const std::string &fullPath)
{
    image->setAttachmentField(FileNameKey, fileName);
    image->setAttachmentField(FullFilePathKey, fullPath);

    beginEditCP(image, Image::NameFieldMask);
    image->setName(absolutePath(fullPath));
    endEditCP(image, Image::NameFieldMask);
}

bool ImageFileHandler::write(const ImagePtr &image,
                             const Char8    *fileName,
                             const Char8    *mimeType)
{
    if(image == NullFC)
    {
        SWARNING << "can't write " << (fileName != NULL ? fileName : "")
                 << "; no image" << std::endl;
        return false;
    }

    std::string name;

    if(fileName != NULL)
    {
        name = fileName;
    }
    else if(const std::string *stored = image->findAttachmentField(FileNameKey))
    {
        name = *stored;
    }

    ImageFileType *type = getFileType(mimeType, name.c_str());

    if(type == NULL)
    {
        SWARNING << "can't write " << name << "; unknown image format"
                 << std::endl;
        return false;
    }

    SINFO << "try to write " << name << " as " << type->getMimeType()
          << std::endl;

    return type->write(image, name.c_str());
}

ImagePtr ImageFileHandler::read(std::istream &is, const std::string &mimeType)
{
    ImagePtr image = Image::create();

    if(!read(image, is, mimeType))
    {
        subRefCP(image);
        image = NullFC;
    }

    return image;
}

bool ImageFileHandler::read(ImagePtr          &image,
                            std::istream      &is,
                            const std::string &mimeType)
{
    ImageFileType *type = getFileType(mimeType.c_str());

    if(type == NULL)
    {
        SWARNING << "could not read a stream of type '" << mimeType
                 << "'; unknown image format" << std::endl;
        return false;
    }

    if(image == NullFC)
    {
        SWARNING << "could not read a stream of type '" << mimeType
                 << "'; no image to read into" << std::endl;
        return false;
    }

    return type->read(image, is, mimeType);
}

bool ImageFileHandler::write(const ImagePtr    &image,
                             std::ostream      &os,
                             const std::string &mimeType)
{
    ImageFileType *type = getFileType(mimeType.c_str());

    if(type == NULL)
    {
        SWARNING << "can't write a stream of type '" << mimeType
                 << "'; unknown image format" << std::endl;
        return false;
    }

    if(image == NullFC)
    {
        SWARNING << "can't write a stream of type '" << mimeType
                 << "'; no image" << std::endl;
        return false;
    }

    return type->write(image, os, mimeType);
}

Int32 ImageFileHandler::getSuffixList(std::list<const Char8 *> &suffixList,
                                      UInt32                    flags)
{
    suffixList.clear();

    for(TypeMap::iterator it = _suffixTypeMap.begin();
        it != _suffixTypeMap.end(); ++it)
    {
        if((it->second->getFlags() & flags) != 0)
            suffixList.push_back(it->first.c_str());
    }

    return Int32(suffixList.size());
}

std::string ImageFileHandler::determineMimetypeFromName(const std::string &fileName)
{
    return determineMimetypeFromSuffix(normalisedSuffixOf(fileName));
}

std::string ImageFileHandler::determineMimetypeFromSuffix(const std::string &suffix)
{
    TypeMap::iterator it = _suffixTypeMap.find(trimmedLower(suffix));

    return it != _suffixTypeMap.end() ? std::string(it->second->getMimeType())
                                      : std::string();
}

std::string ImageFileHandler::determineMimetypeFromStream(std::istream &is)
{
    for(TypeMap::iterator it = _mimeTypeMap.begin(); it != _mimeTypeMap.end();
        ++it)
    {
        const std::string mime = it->second->determineMimetypeFromStream(is);

        if(!mime.empty())
            return mime;
    }

    return std::string();
}

void ImageFileHandler::setReadCB(readcbfp fp)
{
    _readFP = fp;
}

ImageFileHandler::readcbfp ImageFileHandler::getReadCB(void)
{
    return _readFP;
}

bool ImageFileHandler::setOptions(const Char8 *suffix, const Char8 *options)
{
    ImageFileType *type = getFileType(suffix);

    if(type == NULL)
        return false;

    type->setOptions(options);

    return true;
}

const Char8 *ImageFileHandler::getOptions(const Char8 *suffix)
{
    ImageFileType *type = getFileType(suffix);

    return type != NULL ? type->getOptions() : NULL;
}

void ImageFileHandler::setMaxImageBytes(UInt64 bytes)
{
    _maxImageBytes = bytes == 0 || bytes > MaxImageBytesCeiling
                         ? MaxImageBytesCeiling
                         : bytes;
}

UInt64 ImageFileHandler::getMaxImageBytes(void) const
{
    return _maxImageBytes;
}

void ImageFileHandler::setAllowOutsideDataFiles(bool allow)
{
    _allowOutsideDataFiles = allow;
}

bool ImageFileHandler::getAllowOutsideDataFiles(void) const
{
    return _allowOutsideDataFiles;
}

void ImageFileHandler::dump(void)
{
    for(TypeMap::iterator it = _suffixTypeMap.begin();
        it != _suffixTypeMap.end(); ++it)
    {
        FLOG(("Image suffix: %s, mimeType: %s\n", it->first.c_str(),
              it->second->getMimeType()));
    }
}

OSG_END_NAMESPACE

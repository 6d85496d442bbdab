#include <OpenSG/OSGVolumeImageSupport.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include <cmath>
#include <locale>
#include <sstream>

OSG_BEGIN_NAMESPACE

const char *const VolumeValueOffsetKey = "ValueOffset";
const char *const VolumeTransformKey   = "Transform";

std::string formatVolumeTransform(const Real64 matrix[12])
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(9);

    for(UInt32 i = 0; i < 12; ++i)
        text << (i ? " " : "") << (matrix[i] == 0.0 ? 0.0 : matrix[i]);
    return text.str();
}

bool volumeTransformOfImage(const ImagePtr &image, Real64 matrix[12])
{
    const std::string *text =
        image == NullFC ? NULL : image->findAttachmentField(VolumeTransformKey);

    if(text == NULL)
        return false;

    std::istringstream in(*text);
    in.imbue(std::locale::classic());

    for(UInt32 i = 0; i < 12; ++i)
    {
        if(!(in >> matrix[i]) || !std::isfinite(matrix[i]))
            return false;
    }

    std::string rest;
    return !(in >> rest);
}

bool volumeStoreInImage(ImagePtr                 &image,
                        const VolumeLayout       &layout,
                        const std::vector<UInt8> &voxels,
                        const char               *what)
{
    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(image == NullFC ||
       !volumeByteCounts(layout, fileBytes, imageBytes, what) ||
       voxels.size() < imageBytes)
    {
        FWARNING(("%s: no voxels to store\n", what));
        return false;
    }

    beginEditCP(image);

    bool ok = image->set(volumePixelFormat(layout.channels),
                         Int32(layout.width), Int32(layout.height),
                         Int32(layout.depth), 1, 1, 0.0, voxels.data(),
                         Int32(volumeImageType(layout.element)));

    endEditCP(image);

    if(!ok || image->getSize() != imageBytes)
    {
        FWARNING(("%s: no storage for a %u x %u x %u volume\n", what,
                  layout.width, layout.height, layout.depth));
        return false;
    }

    if(layout.hasSpacing)
        image->setAttachmentField("SliceThickness",
                                  formatSliceThickness(layout.spacing));

    if(volumeValueOffset(layout.element) != 0)
    {
        std::ostringstream offset;
        offset << volumeValueOffset(layout.element);
        image->setAttachmentField(VolumeValueOffsetKey, offset.str());
    }
    return true;
}

bool volumeLayoutOfImage(const ImagePtr &image,
                         VolumeLayout   &layout,
                         const UInt8   *&data,
                         UInt64         &size,
                         const char     *what)
{
    layout = VolumeLayout();
    data   = NULL;
    size   = 0;

    if(image == NullFC || image->getData() == NULL)
    {
        FWARNING(("%s: the image holds no data\n", what));
        return false;
    }

    layout.element  = volumeElementForImageType(UInt32(image->getDataType()));
    layout.channels = volumeChannelsOfFormat(image->getPixelFormat());

    if(layout.element == VolumeElementInvalid || layout.channels == 0)
    {
        FWARNING(("%s: can not write images of data type 0x%x, pixel "
                  "format 0x%x\n", what, UInt32(image->getDataType()),
                  image->getPixelFormat()));
        return false;
    }

    const UInt32 bpp = layout.channels * volumeImageComponentSize(layout.element);

    if(UInt32(image->getBpp()) != bpp)
    {
        FWARNING(("%s: the image has %d bytes per pixel, its format needs "
                  "%u\n", what, image->getBpp(), bpp));
        return false;
    }

    layout.width  = UInt32(image->getWidth());
    layout.height = UInt32(image->getHeight());
    layout.depth  = UInt32(image->getDepth());

    const std::string *thickness = image->findAttachmentField("SliceThickness");

    if(thickness != NULL)
        parseSliceThickness(*thickness, layout.spacing);
    layout.hasSpacing = true;

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, what) ||
       image->getSize(false, false, false) < imageBytes)
    {
        FWARNING(("%s: the image's data is smaller than its size\n", what));
        return false;
    }

    data = image->getData();
    size = imageBytes;
    return true;
}

OSG_END_NAMESPACE

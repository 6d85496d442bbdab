// makevolumes: writes the sample volumes (Shepp-Logan phantom, sphere,
// torus, noise) as 8- and 16-bit DAT, NRRD, MetaImage and NIfTI files
// through the host core's image file types, and as DICOM series through
// DCMTK. The output depends only on the arguments.
//
//   makevolumes [--out DIR] [--size N | --size WxHxD] [--thickness "X Y Z"]
//               [--shapes phantom,sphere,torus,noise] [--bits 8,16]
//               [--formats dat,nrrd,nhdr,mha,mhd,nii,nii.gz,dicom]
//               [--endian big|little] [--checksum]
//
// Files are named <shape><size>_u<bits>.<suffix>, except .mhd and .nhdr
// files, named <shape><size>_u<bits>_mhd.mhd and ..._nhdr.nhdr: each of
// them writes its data beside it with the suffix .raw, as a .dat does. A
// DICOM series is the folder <shape><size>_u<bits>_dicom with one file a
// slice (slice0000.dcm, ...).
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGDATImageFileType.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMHDImageFileType.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include "DicomSeriesWriter.h"
#include "VolumeShapes.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace
{

struct Options
{
    std::string              out       = ".";
    unsigned                 size[3]   = { 128, 128, 128 };
    std::string              thickness = "1 1 1";
    std::vector<std::string> shapes    = { "phantom", "sphere", "torus", "noise" };
    std::vector<int>         bits      = { 8, 16 };
    std::vector<std::string> formats   = { "dat", "nrrd", "mha" };
    std::string              endian;
    bool                     checksum  = false;
};

std::vector<std::string> splitList(const std::string &text)
{
    std::vector<std::string> items;
    std::stringstream        in(text);
    std::string              item;

    while(std::getline(in, item, ','))
    {
        if(!item.empty())
            items.push_back(item);
    }
    return items;
}

void usage(void)
{
    std::fprintf(stderr,
        "usage: makevolumes [--out DIR] [--size N|WxHxD] [--thickness \"X Y Z\"]\n"
        "                   [--shapes phantom,sphere,torus,noise] [--bits 8,16]\n"
        "                   [--formats dat,nrrd,nhdr,mha,mhd,nii,nii.gz,dicom]\n"
        "                   [--endian big|little] [--checksum]\n");
}

bool parseSize(const std::string &text, unsigned size[3])
{
    unsigned w = 0, h = 0, d = 0;
    char     tail = 0;

    if(std::sscanf(text.c_str(), "%ux%ux%u%c", &w, &h, &d, &tail) == 3)
    {
        size[0] = w; size[1] = h; size[2] = d;
    }
    else if(std::sscanf(text.c_str(), "%u%c", &w, &tail) == 1)
    {
        size[0] = size[1] = size[2] = w;
    }
    else
    {
        return false;
    }
    return size[0] > 0 && size[1] > 0 && size[2] > 0 &&
           size[0] <= 1024 && size[1] <= 1024 && size[2] <= 1024;
}

bool parseArgs(int argc, char **argv, Options &opt)
{
    for(int i = 1; i < argc; ++i)
    {
        const std::string arg   = argv[i];
        const bool        more  = i + 1 < argc;

        if(arg == "--checksum")
        {
            opt.checksum = true;
        }
        else if(arg == "--out" && more)
        {
            opt.out = argv[++i];
        }
        else if(arg == "--size" && more)
        {
            if(!parseSize(argv[++i], opt.size))
                return false;
        }
        else if(arg == "--thickness" && more)
        {
            opt.thickness = argv[++i];
            double t[3];
            if(!osg::parseSliceThickness(opt.thickness, t))
                return false;
        }
        else if(arg == "--shapes" && more)
        {
            opt.shapes = splitList(argv[++i]);
        }
        else if(arg == "--bits" && more)
        {
            opt.bits.clear();
            for(const std::string &b : splitList(argv[++i]))
            {
                if(b != "8" && b != "16")
                    return false;
                opt.bits.push_back(std::atoi(b.c_str()));
            }
        }
        else if(arg == "--formats" && more)
        {
            opt.formats = splitList(argv[++i]);
        }
        else if(arg == "--endian" && more)
        {
            opt.endian = argv[++i];
            if(opt.endian != "big" && opt.endian != "little")
                return false;
        }
        else
        {
            return false;
        }
    }

    for(const std::string &s : opt.shapes)
    {
        volshapes::Shape shape;
        if(!volshapes::shapeFromName(s, shape))
            return false;
    }
    for(const std::string &f : opt.formats)
    {
        if(f != "dat" && f != "nrrd" && f != "nhdr" && f != "mha" && f != "mhd" &&
           f != "nii" && f != "nii.gz" && f != "dicom")
            return false;
    }
    return !opt.shapes.empty() && !opt.bits.empty() && !opt.formats.empty();
}

int run(const Options &opt)
{
    using namespace osg;

    ::mkdir(opt.out.c_str(), 0777);

    // the writers' byte-order options; unset keeps each format's default
    if(opt.endian == "little")
    {
        DATImageFileType::the().setOptions("endian=little");
        MHDImageFileType::the().setOptions("msb=false");
    }
    else if(opt.endian == "big")
    {
        DATImageFileType::the().setOptions("endian=big");
        MHDImageFileType::the().setOptions("msb=true");
    }

    std::ostringstream sizeName;
    if(opt.size[0] == opt.size[1] && opt.size[1] == opt.size[2])
        sizeName << opt.size[0];
    else
        sizeName << opt.size[0] << "x" << opt.size[1] << "x" << opt.size[2];

    int failures = 0;

    for(const std::string &s : opt.shapes)
    {
        volshapes::Shape shape = volshapes::Phantom;
        volshapes::shapeFromName(s, shape);

        for(int bits : opt.bits)
        {
            const std::vector<uint8_t> voxels =
                volshapes::makeVolume(shape, opt.size[0], opt.size[1],
                                      opt.size[2], bits);

            ImagePtr image = Image::create();
            addRefCP(image);

            image->set(Image::OSG_L_PF, Int32(opt.size[0]), Int32(opt.size[1]),
                       Int32(opt.size[2]), 1, 1, 0.0, voxels.data(),
                       bits == 8 ? Image::OSG_UINT8_IMAGEDATA
                                 : Image::OSG_UINT16_IMAGEDATA);
            image->setAttachmentField("SliceThickness", opt.thickness);

            const std::string base = opt.out + "/" + s + sizeName.str() + "_u" +
                                     std::to_string(bits);

            if(opt.checksum)
            {
                std::printf("%s%s_u%d fnv1a %016llx\n", s.c_str(),
                            sizeName.str().c_str(), bits,
                            static_cast<unsigned long long>(
                                volshapes::fnv1a(voxels.data(), voxels.size())));
            }

            for(const std::string &format : opt.formats)
            {
                if(format == "dicom")
                {
                    double spacing[3] = {1, 1, 1};
                    parseSliceThickness(opt.thickness, spacing);
                    if(!writeDicomSeries(base + "_dicom", voxels.data(),
                                         opt.size, bits, spacing,
                                         s + sizeName.str()))
                    {
                        std::fprintf(stderr, "makevolumes: could not write %s\n",
                                     (base + "_dicom").c_str());
                        ++failures;
                    }
                    continue;
                }

                std::string name = base + "." + format;

                // .mhd and .nhdr write base.raw beside them, like .dat
                if(format == "mhd" || format == "nhdr")
                    name = base + "_" + format + "." + format;

                if(!image->write(name.c_str()))
                {
                    std::fprintf(stderr, "makevolumes: could not write %s\n",
                                 name.c_str());
                    ++failures;
                }
            }

            subRefCP(image);
        }
    }
    return failures == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    Options opt;

    if(!parseArgs(argc, argv, opt))
    {
        usage();
        return 2;
    }

    if(!osg::osgInit(argc, argv))
        return 1;

    // the writers log each file at info level; only problems matter here
    osg::osgLog().setLogLevel(osg::LOG_WARNING);

    const int result = run(opt);

    osg::osgExit();
    return result;
}

// corvane: the project's command-line program.
//
//   corvane types                         lists every field-container type
//   corvane fields TYPE...                creates each type by name and prints its fields
//   corvane dxt IN.png OUT.dds [dxt1|dxt5] compresses an image to a DDS file
//   corvane render OUT.png [W H]          renders the shaded demo scene headless to PNG
//   corvane scene NAME OUT.png [W H]      renders one demo scene
//   corvane scenes                        lists the demo scenes
//   corvane view [VOLUME] [--mesh FILE]   an interactive viewer in a GLUT window
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGField.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/DXTCompressor.h>

#include "Args.h"
#include "DDSWriter.h"
#include "DemoScene.h"
#include "VolumeRenderer.h"
#include "Viewer.h"

#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <vector>
#include "OutputFile.h"

#include <fstream>

#include <cstdio>
#include <cstring>
#include <string>

OSG_USING_NAMESPACE

namespace
{

int usage(void)
{
    fprintf(stderr,
            "usage: corvane types\n"
            "       corvane fields TYPE...\n"
            "       corvane dxt IN.png OUT.dds [dxt1|dxt5]\n"
            "       corvane render OUT.png [WIDTH HEIGHT]\n"
            "       corvane scene NAME OUT.png [WIDTH HEIGHT]\n"
            "       corvane scenes\n"
            "       corvane volume [FILE] [options] -o OUT.png   (corvane volume --help)\n"
            "       corvane view [VOLUME] [--mesh FILE] [--tf FILE]  (corvane view --help)\n");
    return 2;
}

const char *const VolumeHelp =
    "usage: corvane volume [FILE] [options] -o OUT.png\n"
    "Ray casts a volume file (DAT, NRRD, MetaImage) or, without FILE, the built-in\n"
    "Shepp-Logan phantom, headless, mixed with an opaque sphere.\n"
    "  -o, --output FILE        the PNG to write (an orbit numbers its frames)\n"
    "  --size W H               image size (default 512 512)\n"
    "  --transfer FILE|NAME     transfer-function file or preset: phantom, ramp\n"
    "  --style NAME             dvr, lit, mip, xray or boundary (default dvr)\n"
    "  --traversal NAME         simple or skipping (block skipping)\n"
    "  --rays NAME              simple or interleaved\n"
    "  --normals NAME           online, sobel or precomputed\n"
    "  --preintegrated          pre-integrated classification\n"
    "  --step S                 ray step in unit-cube coordinates (default 0.004)\n"
    "  --orbit N                N frames around the volume\n"
    "  --azimuth DEG, --elevation DEG   the camera's direction\n"
    "  --phantom-size N         edge of the built-in phantom (default 96)\n"
    "  --no-mesh                no sphere in the scene\n"
    "  --mesh FILE              a mesh file (OBJ, PLY, STL, glTF, OFF) instead of the sphere\n"
    "  --progress               a progress bar while loading and preparing\n";

int volumeError(const std::string &message)
{
    fprintf(stderr, "corvane volume: %s\n", message.c_str());
    return 2;
}

int renderVolumeCommand(int argc, char **argv)
{
    corvane::VolumeRenderOptions o;
    bool                         haveOutput = false;
    for(int i = 0; i < argc; ++i)
    {
        const std::string a    = argv[i];
        auto              need = [&](int count) { return i + count < argc; };
        if(a == "--help" || a == "-h")
        {
            fputs(VolumeHelp, stdout);
            return 0;
        }
        else if((a == "-o" || a == "--output") && need(1))
        {
            o.output   = argv[++i];
            haveOutput = true;
        }
        else if(a == "--traversal" && need(1))
        {
            std::string v = argv[++i];
            if(v != "simple" && v != "skipping")
                return volumeError("unknown traversal '" + v + "'");
            o.traversal = v == "simple" ? 1 : 2;
        }
        else if(a == "--rays" && need(1))
        {
            std::string v = argv[++i];
            if(v != "simple" && v != "interleaved")
                return volumeError("unknown ray generation '" + v + "'");
            o.rayGen = v == "simple" ? 1 : 2;
        }
        else if(a == "--normals" && need(1))
        {
            std::string v = argv[++i];
            if(v != "online" && v != "sobel" && v != "precomputed")
                return volumeError("unknown normals '" + v + "'");
            o.normals = v == "precomputed" ? 1 : v == "online" ? 2 : 3;
        }
        else if(a == "--preintegrated")
            o.preintegrated = true;
        else if(a == "--orbit" && need(1))
        {
            if(!corvane::parseUInt(argv[++i], 1, 3600, o.frames))
                return volumeError("bad frame count '" + std::string(argv[i]) + "' (1 to 3600)");
        }
        else if(a == "--azimuth" && need(1))
        {
            if(!corvane::parseFloat(argv[++i], -360.0f, 360.0f, o.azimuth))
                return volumeError("bad azimuth '" + std::string(argv[i]) + "'");
        }
        else if(a == "--elevation" && need(1))
        {
            if(!corvane::parseFloat(argv[++i], -89.0f, 89.0f, o.elevation))
                return volumeError("bad elevation '" + std::string(argv[i]) + "'");
        }
        else if(a == "--phantom-size" && need(1))
        {
            if(!corvane::parseUInt(argv[++i], 8, 512, o.phantomSize))
                return volumeError("bad phantom size '" + std::string(argv[i]) + "' (8 to 512)");
        }
        else if(a == "--no-mesh")
            o.mesh = false;
        else if(a == "--progress")
            o.progress = true;
        else
        {
            std::string error;
            if(!corvane::parseSharedOption(argc, argv, i, o, "image", error))
                return volumeError(error);
        }
    }
    if(!haveOutput)
        return volumeError("no output file (-o OUT.png)");

    // the library's notices would drown the frame times
    osgLog().setLogLevel(LOG_WARNING);
    std::vector<double> times;
    std::string         error;
    if(!corvane::renderVolume(o, error, &times))
    {
        fprintf(stderr, "corvane volume: %s\n", error.c_str());
        return 1;
    }
    std::sort(times.begin(), times.end());
    printf("%u frame%s of %ux%u, median %.1f ms a frame\n", o.frames, o.frames == 1 ? "" : "s",
           o.width, o.height, times.empty() ? 0.0 : times[times.size() / 2]);
    return 0;
}

int listScenes(void)
{
    for(const std::string &name : corvane::demoSceneNames())
        printf("%-12s %s\n", name.c_str(), corvane::demoSceneSummary(name).c_str());
    return 0;
}

int listTypes(void)
{
    FieldContainerFactory *factory = FieldContainerFactory::the();
    for(FieldContainerFactory::TypeMapIterator it = factory->beginTypes();
        it != factory->endTypes(); ++it)
    {
        FieldContainerType *type = it->second;
        printf("%-32s parent %-24s fields %2u%s\n", type->getCName(),
               type->getParent() ? type->getParent()->getCName() : "-",
               type->getNumFieldDescs(), type->isAbstract() ? "  (abstract)" : "");
    }
    return 0;
}

/// Prints one line a field: id, mask, name, field type and value as text.
void printFields(FieldContainerPtr fc)
{
    FieldContainerType &type = fc->getType();
    printf("%s (type id %u, container id %u)\n", type.getCName(), type.getId(),
           fc.getFieldContainerId());
    for(UInt32 id = 1; id <= type.getNumFieldDescs(); ++id)
    {
        FieldDescription *desc = type.getFieldDescription(id);
        if(desc == NULL)
            continue;
        Field *field = fc->getField(id);
        std::string value;
        const FieldType &ftype = static_cast<const FieldType &>(desc->getFieldType());
        // pointers, attachment maps and volumes have no text form: show
        // how many values they hold instead
        const Char8 *name = ftype.getCName();
        bool noText = strstr(name, "Ptr") != NULL || strstr(name, "AttachmentMap") != NULL ||
                      strstr(name, "Volume") != NULL;
        if(field != NULL && !noText)
            field->getValueByStr(value);
        else if(field != NULL && ftype.getCardinality() == FieldType::MULTI_FIELD)
            value = "[" + std::to_string(field->getSize()) + " values]";
        else if(field != NULL)
            value = "<" + std::string(field->getContentType().getCName()) + ">";
        printf("  %2u  0x%016llx  %-24s %-22s %s%s\n", id,
               (unsigned long long)desc->getFieldMask(), desc->getCName(), ftype.getCName(),
               value.c_str(), desc->isInternal() ? "  (internal)" : "");
    }
}

int showFields(int argc, char **argv)
{
    int failures = 0;
    for(int i = 0; i < argc; ++i)
    {
        FieldContainerPtr fc = FieldContainerFactory::the()->createFieldContainer(argv[i]);
        if(fc == NullFC)
        {
            fprintf(stderr, "corvane: can't create '%s' (unknown or abstract type)\n", argv[i]);
            ++failures;
            continue;
        }
        addRefCP(fc);
        printFields(fc);
        subRefCP(fc);
    }
    return failures == 0 ? 0 : 1;
}

/// Reads an image, compresses it (DXT1, DXT5, or by its alpha channel) and
/// writes it as a DDS file.
int compressToDDS(int argc, char **argv)
{
    DXTCompressor::CompressedFormat format = DXTCompressor::Auto;
    if(argc > 2)
    {
        if(strcmp(argv[2], "dxt1") == 0)
            format = DXTCompressor::DXT1;
        else if(strcmp(argv[2], "dxt5") == 0)
            format = DXTCompressor::DXT5;
        else
            return usage();
    }

    ImagePtr image = Image::create();
    addRefCP(image);
    if(!image->read(argv[0]))
    {
        fprintf(stderr, "corvane: can't read '%s'\n", argv[0]);
        subRefCP(image);
        return 1;
    }
    // DDS files keep the top row first
    ImagePtr flipped = corvane::flipRows(image);
    addRefCP(flipped);
    subRefCP(image);

    int result = 1;
    if(DXTCompressor::the().compressImage(flipped, format))
    {
        const bool written = corvane::writeOutputFile(argv[1], [&](const std::string &temp) {
            std::ofstream out(temp.c_str(), std::ios::binary | std::ios::trunc);
            const bool    ok = corvane::writeDDS(flipped, out);
            out.close();
            return ok && !out.fail();
        });
        if(written)
        {
            printf("%s: %dx%d, %llu bytes of %s\n", argv[1], flipped->getWidth(),
                   flipped->getHeight(), static_cast<unsigned long long>(flipped->getSize()),
                   flipped->getPixelFormat() == GL_COMPRESSED_RGBA_S3TC_DXT5_EXT ? "DXT5" : "DXT1");
            result = 0;
        }
        else
        {
            fprintf(stderr, "corvane: can't write '%s'\n", argv[1]);
        }
    }
    else
    {
        fprintf(stderr, "corvane: can't compress '%s'\n", argv[0]);
    }
    subRefCP(flipped);
    return result;
}

/// args: OUT.png [WIDTH HEIGHT], each edge 1 to 8192
int renderScene(const char *name, char **args, int count)
{
    unsigned width = 800, height = 600;
    if(count == 3 && (!corvane::parseUInt(args[1], 1, 8192, width) ||
                      !corvane::parseUInt(args[2], 1, 8192, height)))
    {
        fprintf(stderr, "corvane: WIDTH and HEIGHT must be whole numbers from 1 to 8192\n");
        return usage();
    }
    const bool written = corvane::writeOutputFile(args[0], [&](const std::string &temp) {
        return corvane::renderDemoScene(name, temp.c_str(), width, height);
    });
    return written ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    if(argc < 2)
        return usage();
    if(!osgInit(argc, argv))
        return 1;

    int result;
    if(strcmp(argv[1], "types") == 0)
        result = listTypes();
    else if(strcmp(argv[1], "fields") == 0 && argc > 2)
        result = showFields(argc - 2, argv + 2);
    else if(strcmp(argv[1], "dxt") == 0 && argc > 3)
        result = compressToDDS(argc - 2, argv + 2);
    else if(strcmp(argv[1], "render") == 0 && (argc == 3 || argc == 5))
        result = renderScene("shaded", argv + 2, argc - 2);
    else if(strcmp(argv[1], "volume") == 0)
        result = renderVolumeCommand(argc - 2, argv + 2);
    else if(strcmp(argv[1], "view") == 0)
        result = corvane::viewCommand(argc - 2, argv + 2);
    else if(strcmp(argv[1], "scenes") == 0 && argc == 2)
        result = listScenes();
    else if(strcmp(argv[1], "scene") == 0 && (argc == 4 || argc == 6))
        result = renderScene(argv[2], argv + 3, argc - 3);
    else
        result = usage();

    osgExit();
    return result;
}

// The OpenSG 1.8 ways of what HostCoreOnlyUses.cpp does, and look-alikes in
// comments and strings: the API check must find nothing here.
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGGL.h>

OSG_USING_NAMESPACE

ImagePtr makeImage(void);

// a const parameter in one function ...
void inspect(const ImagePtr &image);

// ... and a plain variable of the same name in the next
void attach(TextureChunkPtr tex)
{
    ImagePtr image = makeImage();
    tex->setImage(image);
}

void fill(TextureChunkPtr tex, SHLChunkPtr shl)
{
    ImagePtr image = makeImage();
    image->getData()[0] = 1; // not image->editData()
    shl->subUniformParameter("scale");
    unsigned short half = Real16(0.5f).bits();
    glErr("fill");
    if(!osgGlCheckError(__FILE__, __LINE__, "fill"))
        half = 0;
    const char *text = "hasUniformParameter(\"x\") and Real16::fromFloat(1)";
    const char *glsl = R"(
        if(!glErr(x)) editData();
    )";
    /* setImage(makeImage()) */
}

// The volume renderer's demo scenes: the Shepp-Logan phantom ray cast in
// each shading style, cut by an opaque sphere.
#include "../DemoScene.h"
#include "../VolumeRenderer.h"

#include <OpenSG/OSGLog.h>

using namespace corvane;

namespace
{

bool renderStyle(const char *style, const char *fileName, osg::UInt32 width, osg::UInt32 height)
{
    VolumeRenderOptions options;
    options.style       = style;
    options.output      = fileName;
    options.width       = width;
    options.height      = height;
    options.phantomSize = 128;
    std::string error;
    if(!renderVolume(options, error))
    {
        FWARNING(("volume scene: %s\n", error.c_str()));
        return false;
    }
    return true;
}

bool renderDVR(const char *f, osg::UInt32 w, osg::UInt32 h)
{
    return renderStyle("dvr", f, w, h);
}
bool renderLit(const char *f, osg::UInt32 w, osg::UInt32 h)
{
    return renderStyle("lit", f, w, h);
}
bool renderMIP(const char *f, osg::UInt32 w, osg::UInt32 h)
{
    return renderStyle("mip", f, w, h);
}
bool renderXRay(const char *f, osg::UInt32 w, osg::UInt32 h)
{
    return renderStyle("xray", f, w, h);
}

const DemoSceneRegistration dvrScene("volume", "the phantom ray cast (DVR), cut by a sphere",
                                     renderDVR);
const DemoSceneRegistration litScene("volume-lit", "the phantom with lit DVR", renderLit);
const DemoSceneRegistration mipScene("volume-mip", "the phantom as maximum intensity projection",
                                     renderMIP);
const DemoSceneRegistration xrayScene("volume-xray", "the phantom as an X-ray", renderXRay);

} // namespace

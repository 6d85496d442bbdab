// Every combination of the ray-casting strategies, concatenated by the
// handler, compiles and links: 2 ray generations x 2 traversals x 3 normal
// strategies x 6 shadings (MIP, X-ray, DVR and lit DVR each with and
// without gradient opacity) x 2 transfer functions x 8 and 16 bit.
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/NormalVolume.h>
#include <OpenSG/PreCentralDiffNormal.h>
#include <OpenSG/PreintTransferFunction.h>
#include <OpenSG/RayGeneration.h>
#include <OpenSG/ShadingFunctions.h>
#include <OpenSG/SimpleTransferfunction.h>
#include <OpenSG/TraversalFunctions.h>
#include <OpenSG/VolumeNodeHandler.h>

#include <gtest/gtest.h>

#include <memory>

using namespace osg;

namespace
{

bool compiles(GLenum type, const std::string &text, GLuint &shader)
{
    shader              = glCreateShader(type);
    const char *source  = text.c_str();
    glShaderSource(shader, 1, &source, NULL);
    glCompileShader(shader);
    GLint ok = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
    if(!ok)
    {
        char log[4096] = "";
        glGetShaderInfoLog(shader, sizeof(log), NULL, log);
        ADD_FAILURE() << log;
    }
    return ok != 0;
}

ShadingFunctions *makeShading(int which)
{
    switch(which)
    {
        case 0: return new MIPShading;
        case 1: return new XRayShading;
        default:
        {
            DVRShadingBase *dvr = which < 4 ? static_cast<DVRShadingBase *>(new DVRShading)
                                            : new DVRShadingAndLighting;
            dvr->_gradientOpacity = (which % 2) == 1;
            return dvr;
        }
    }
}

} // namespace

TEST(RaycastingShader, EveryCombinationCompilesAndLinks)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL context";
    HeadlessGLContext context;
    ASSERT_TRUE(context.init(1, 1));

    VolumeNodeHandler handler;
    GLuint            vs = 0;
    ASSERT_TRUE(compiles(GL_VERTEX_SHADER, handler.getVertexShaderString(), vs));
    int linked = 0;
    for(int ray = 0; ray < 2; ++ray)
        for(int traversal = 0; traversal < 2; ++traversal)
            for(int normal = 0; normal < 3; ++normal)
                for(int shading = 0; shading < 6; ++shading)
                    for(int transfer = 0; transfer < 4; ++transfer)
                    {
                        std::unique_ptr<RayGeneration> r(ray ? static_cast<RayGeneration *>(new InterleavedRay)
                                                             : new SimpleRay);
                        std::unique_ptr<TraversalFunctions> t(
                            traversal ? static_cast<TraversalFunctions *>(new BlockSkippingTraversal)
                                      : new SimpleTraversal);
                        std::unique_ptr<NormalVolume> n(
                            normal == 0 ? static_cast<NormalVolume *>(new OnlineCentralDiffNormal)
                            : normal == 1 ? static_cast<NormalVolume *>(new OnlineSobelNormal)
                                          : new PreCentralDiffNormal);
                        std::unique_ptr<ShadingFunctions> s(makeShading(shading));
                        std::unique_ptr<Transferfunction> tf(
                            transfer < 2 ? static_cast<Transferfunction *>(new SimpleTransferfunction)
                                         : new PreintTransferFunction);
                        tf->setMode(transfer % 2);

                        const std::string text =
                            handler.getPreambleShaderString() + r->getFragmentShaderString() +
                            n->getFragmentShaderString() + tf->getFragmentShaderString() +
                            s->getFragmentShaderString() + t->getFragmentShaderString() +
                            handler.getMainShaderString();
                        GLuint fs = 0;
                        if(!compiles(GL_FRAGMENT_SHADER, text, fs))
                        {
                            ADD_FAILURE() << "ray " << ray << " traversal " << traversal
                                          << " normal " << normal << " shading " << shading
                                          << " transfer " << transfer;
                            glDeleteShader(fs);
                            continue;
                        }
                        GLuint program = glCreateProgram();
                        glAttachShader(program, vs);
                        glAttachShader(program, fs);
                        glLinkProgram(program);
                        GLint ok = 0;
                        glGetProgramiv(program, GL_LINK_STATUS, &ok);
                        EXPECT_TRUE(ok) << "link: ray " << ray << " traversal " << traversal
                                        << " normal " << normal << " shading " << shading
                                        << " transfer " << transfer;
                        linked += ok != 0;
                        glDeleteProgram(program);
                        glDeleteShader(fs);
                    }
    glDeleteShader(vs);
    EXPECT_EQ(linked, 2 * 2 * 3 * 6 * 4);
}

TEST(RaycastingShader, DVRWithoutGradientOpacityNeverAsksForNormals)
{
    DVRShading plain;
    EXPECT_EQ(plain.getFragmentShaderString().find("getNormal"), std::string::npos);
    plain._gradientOpacity = true;
    EXPECT_NE(plain.getFragmentShaderString().find("getNormal"), std::string::npos);
}

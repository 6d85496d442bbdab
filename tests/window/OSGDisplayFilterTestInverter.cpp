#include <OpenSG/OSGDisplayFilterTestInverter.h>

#include <OpenSG/OSGDisplayFilterForeground.h>

OSG_BEGIN_NAMESPACE

DisplayFilterTestInverter::DisplayFilterTestInverter(void)
    : Inherited(), creates(0), updates(0), lastPort(NULL), shader(NullFC)
{
}

DisplayFilterTestInverter::DisplayFilterTestInverter(const DisplayFilterTestInverter &source)
    : Inherited(source), creates(0), updates(0), lastPort(NULL), shader(NullFC)
{
}

DisplayFilterTestInverter::~DisplayFilterTestInverter(void)
{
}

void DisplayFilterTestInverter::initMethod(void)
{
}

void DisplayFilterTestInverter::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void DisplayFilterTestInverter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DisplayFilterTestInverter NI" << std::endl;
}

const char *DisplayFilterTestInverter::fragmentProgram(void)
{
    return "uniform sampler2D grabTexture;\n"
           "void main(void)\n"
           "{\n"
           "    vec3 c = texture2D(grabTexture, gl_TexCoord[0].xy).rgb;\n"
           "    gl_FragColor = vec4(vec3(1.0) - c, 1.0);\n"
           "}\n";
}

void DisplayFilterTestInverter::createFilter(DisplayFilterForeground *fg, Viewport *port)
{
    ++creates;
    lastPort = port;

    DisplayFilterForeground::DisplayFilterGroup *group = fg->findReadbackGroup(getGroup());

    shader = SHLChunk::create();
    beginEditCP(shader);
    shader->setVertexProgram("void main(void)\n"
                             "{\n"
                             "    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;\n"
                             "    gl_Position    = ftransform();\n"
                             "}\n");
    shader->setFragmentProgram(fragmentProgram());
    shader->setUniformParameter("grabTexture", Int32(0));
    endEditCP(shader);

    ChunkMaterialPtr mat = group->getMaterial();
    beginEditCP(mat, ChunkMaterial::ChunksFieldMask);
    mat->addChunk(shader);
    endEditCP(mat, ChunkMaterial::ChunksFieldMask);
}

void DisplayFilterTestInverter::updateFilter(Viewport *port)
{
    ++updates;
    lastPort = port;
}

OSG_END_NAMESPACE

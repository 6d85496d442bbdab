#include <OpenSG/SimpleTransferfunction.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/OSGImage.h>

OSG_USING_NAMESPACE

const char *const SimpleTransferfunction::_fragmentShader1D = R"GLSL(
uniform sampler1D transferFunction;

void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.color = texture1DLod(transferFunction, current.value.r, 0.0);
}
)GLSL";

const char *const SimpleTransferfunction::_fragmentShader2D = R"GLSL(
uniform sampler2D transferFunction;

void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    float scaled = current.value.r * 256.0;
    float row = floor(scaled);
    float column = scaled - row;
    row = row / 256.0;
    current.color = texture2DLod(transferFunction, vec2(column, row), 0.0);
}
)GLSL";

const char *const SimpleTransferfunction::_correctionShader = R"GLSL(
uniform float correctionFactor;

void applyCorrectionFactor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.color.a = 1.0 - pow(1.0 - current.color.a, current.stepsize * correctionFactor);
    current.color.rgb *= current.color.a;
}
)GLSL";

SimpleTransferfunction::SimpleTransferfunction(bool unused) : Transferfunction(unused)
{
}

SimpleTransferfunction::SimpleTransferfunction(const SimpleTransferfunction &source)
    : Transferfunction(source)
{
}

SimpleTransferfunction::~SimpleTransferfunction(void)
{
}

std::string SimpleTransferfunction::getFragmentShaderString(void)
{
    const char *classification = NULL;
    if(_mode == 0)
        classification = _fragmentShader1D;
    else if(_mode == 1)
        classification = _fragmentShader2D;
    else
        return std::string();
    return std::string(classification) + _correctionShader + _compositeShader;
}

void SimpleTransferfunction::setMaterialParameter(ChunkMaterialPtr &material,
                                                  SHLChunkPtr      &shader,
                                                  int              &textureUnit,
                                                  VolumeData       *)
{
    if(material == NullFC || shader == NullFC)
        return;

    // a texture unit is counted only for a texture that was added
    const bool hasTable = _tfTexture != NullFC;
    if(hasTable)
    {
        beginEditCP(material);
        material->addChunk(_tfTexture, State::AutoSlotReplace);
        endEditCP(material);
    }

    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    if(hasTable)
        shader->setUniformParameter("transferFunction", Int32(textureUnit));
    shader->setUniformParameter("correctionFactor", Real32(200.0));
    endEditCP(shader, SHLChunk::ParametersFieldMask);

    if(hasTable)
        ++textureUnit;
}

bool SimpleTransferfunction::load(std::string fileName)
{
    return loadTransferfunction(fileName);
}

bool SimpleTransferfunction::setFunc(TextureChunkPtr texture)
{
    return setTransferfunc(texture);
}

void SimpleTransferfunction::createLinearTransfer(int mode)
{
    ImagePtr image = bakeCurrentPoints(mode);
    attachTable(image);
    subRefCP(image);
}

void SimpleTransferfunction::init(VolumeData *)
{
    ImagePtr table = getTableImage();
    if(table == NullFC)
    {
        createLinearTransfer(_mode);
        return;
    }
    // a table built for the other kind of volume is baked anew from the
    // control points; a fitting one may be the user's and stays
    if(table->getDataType() == GL_HALF_FLOAT && _mode == 0)
        createLinearTransfer(0);
    table = getTableImage();
    if(table->getDataType() == GL_UNSIGNED_BYTE && _mode == 1)
        createLinearTransfer(1);
}

#include <OpenSG/PreintTransferFunction.h>
#include <OpenSG/TransferTables.h>
#include <OpenSG/VolumeTextureUtils.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

OSG_USING_NAMESPACE

const char *const PreintTransferFunction::_fragmentShader8Bit = R"GLSL(
uniform sampler2D preIntTable;

void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.color = texture2DLod(preIntTable, vec2(current.value.r, previous.value.r), 0.0);
}
)GLSL";

const char *const PreintTransferFunction::_fragmentShader16Bit = R"GLSL(
uniform sampler2D preIntTable;
uniform sampler2D transferFunction;

vec2 getTextureCoordinate(in float texcoord)
{
    float scaled = texcoord * 256.0;
    float row = floor(scaled);
    float column = scaled - row;
    row = row / 256.0;
    return vec2(column, row);
}

vec4 getTextureCoordinates(in vec2 texcoords)
{
    vec2 scaled = texcoords * vec2(256.0);
    vec2 row = floor(scaled);
    vec2 column = scaled - row;
    row = row / vec2(256.0);
    return vec4(column.x, row.x, column.y, row.y);
}

void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    if(abs(current.value.r - previous.value.r) <= 1.0 / 65535.0)
    {
        vec2 texCoord = getTextureCoordinate(current.value.r);
        current.color = texture2DLod(transferFunction, texCoord, 0.0);
        current.color.rgb *= current.color.a;
    }
    else
    {
        vec4 texCoords = getTextureCoordinates(vec2(current.value.r, previous.value.r));
        vec4 color1 = texture2DLod(preIntTable, texCoords.xy, 0.0);
        vec4 color2 = texture2DLod(preIntTable, texCoords.zw, 0.0);
        float weight = 1.0 / (65536.0 * (current.value.r - previous.value.r));
        current.color = weight * (color1 - color2);
    }
}
)GLSL";

const char *const PreintTransferFunction::_correctionShader = R"GLSL(
uniform float correctionFactor;

void applyCorrectionFactor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    float oldAlpha = current.color.a;
    current.color.a = 1.0 - pow(1.0 - current.color.a, current.stepsize * correctionFactor);
    current.color.rgb *= current.color.a / oldAlpha;
}
)GLSL";

PreintTransferFunction::PreintTransferFunction(bool unused)
    : Transferfunction(unused), _preIntTable(NullFC)
{
}

PreintTransferFunction::PreintTransferFunction(const PreintTransferFunction &source)
    : Transferfunction(source), _preIntTable(NullFC)
{
}

PreintTransferFunction::~PreintTransferFunction(void)
{
    VolumeTextureUtils::release(_preIntTable);
}

std::string PreintTransferFunction::getFragmentShaderString(void)
{
    const char *classification = _mode == 0 ? _fragmentShader8Bit : _fragmentShader16Bit;
    return std::string(classification) + _correctionShader + _compositeShader;
}

void PreintTransferFunction::setMaterialParameter(ChunkMaterialPtr &material,
                                                  SHLChunkPtr      &shader,
                                                  int              &textureUnit,
                                                  VolumeData       *)
{
    if(material == NullFC || shader == NullFC)
        return;

    // units are counted for the textures that were really added, so that
    // the strategies after this one stay in step with the material
    const bool hasPreInt = _preIntTable != NullFC;
    const bool hasTable  = _mode == 1 && _tfTexture != NullFC;

    beginEditCP(material);
    if(hasPreInt)
        material->addChunk(_preIntTable, State::AutoSlotReplace);
    if(hasTable)
        material->addChunk(_tfTexture, State::AutoSlotReplace);
    endEditCP(material);

    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    if(hasPreInt)
    {
        shader->setUniformParameter("preIntTable", Int32(textureUnit));
        ++textureUnit;
    }
    if(hasTable)
    {
        shader->setUniformParameter("transferFunction", Int32(textureUnit));
        ++textureUnit;
    }
    shader->setUniformParameter("correctionFactor", Real32(200.0));
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}

bool PreintTransferFunction::load(std::string fileName)
{
    if(!loadTransferfunction(fileName))
        return false;
    return calcPreIntTable(getTableImage());
}

bool PreintTransferFunction::setFunc(TextureChunkPtr texture)
{
    if(!setTransferfunc(texture))
        return false;
    return calcPreIntTable(getTableImage());
}

void PreintTransferFunction::createLinearTransfer(int mode)
{
    ImagePtr image = bakeCurrentPoints(mode);
    calcPreIntTable(image);
    attachTable(image);
    subRefCP(image);
}

void PreintTransferFunction::init(VolumeData *volumeData)
{
    ImagePtr volume = volumeData != NULL ? volumeData->getVolumeImage() : ImagePtr(NullFC);
    _mode = (volume != NullFC && volume->getDataType() == GL_UNSIGNED_SHORT) ? 1 : 0;

    ImagePtr table = getTableImage();
    if(table == NullFC)
    {
        createLinearTransfer(_mode);
        return;
    }
    if(table->getDataType() == GL_HALF_FLOAT && _mode == 0)
        createLinearTransfer(0);
    table = getTableImage();
    if(table->getDataType() == GL_UNSIGNED_BYTE && _mode == 1)
        createLinearTransfer(1);

    calcPreIntTable(getTableImage());
}

bool PreintTransferFunction::calcPreIntTable(ImagePtr transferFunction)
{
    if(transferFunction == NullFC)
    {
        FWARNING(("Transferfunction does not exist! Preintegration could not be "
                  "calculated.\n"));
        return false;
    }
    if(_mode != 0 && _mode != 1)
        return true;

    ImagePtr table = Image::create();
    addRefCP(table);
    beginEditCP(table);
    if(_mode == 0)
    {
        const Int32 n = std::max(transferFunction->getWidth(), 0);
        table->set(GL_RGBA, n, n, 1, 1, 1, 0.0, NULL, GL_HALF_FLOAT, true, 1);
        if(table->getData() != NULL)
        {
            TransferTables::preIntegrateBytes(transferFunction->getData(),
                                              transferFunction->getSize(),
                                              table->getData(), table->getSize());
        }
    }
    else
    {
        table->set(GL_RGBA, 256, 256, 1, 1, 1, 0.0, NULL, GL_FLOAT, true, 1);
        if(table->getData() != NULL)
        {
            TransferTables::integrateHalves(transferFunction->getData(),
                                            transferFunction->getSize(),
                                            reinterpret_cast<Real32 *>(table->getData()));
        }
    }
    endEditCP(table);

    VolumeTextureUtils::ensure(_preIntTable);
    beginEditCP(_preIntTable);
    _preIntTable->setImage(table);
    if(_mode == 0)
    {
        _preIntTable->setInternalFormat(GL_RGBA16F_ARB);
        VolumeTextureUtils::setSampling(_preIntTable, GL_CLAMP_TO_EDGE, GL_LINEAR);
    }
    else
    {
        _preIntTable->setInternalFormat(GL_RGBA32F_ARB);
        VolumeTextureUtils::setSampling(_preIntTable, GL_CLAMP_TO_EDGE, GL_NEAREST);
    }
    endEditCP(_preIntTable);
    subRefCP(table);

    if(_mode == 1)
    {
        // the 16-bit shader reads the plain table as well, texel by texel
        VolumeTextureUtils::ensure(_tfTexture);
        beginEditCP(_tfTexture);
        VolumeTextureUtils::setSampling(_tfTexture, GL_CLAMP_TO_EDGE, GL_NEAREST);
        endEditCP(_tfTexture);
    }
    return true;
}

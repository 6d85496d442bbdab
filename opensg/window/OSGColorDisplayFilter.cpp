#include <OpenSG/OSGColorDisplayFilter.h>

#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGTextureChunk.h>

#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{

const char *colorFilterVertexProgram =
    "varying vec2 position;\n"
    "varying mat4 shadingTexMat;\n"
    "\n"
    "void main(void)\n"
    "{\n"
    "    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;\n"
    "    shadingTexMat  = gl_TextureMatrix[1];\n"
    "    gl_Position    = ftransform();\n"
    "    position       = gl_Vertex.xy;\n"
    "}\n";

const char *colorFilterFragmentProgram =
    "uniform sampler2D grabTexture;\n"
    "uniform sampler3D shadingTexture;\n"
    "uniform mat4      colorMatrix;\n"
    "uniform float     gamma;\n"
    "uniform int       shadingWidth;\n"
    "uniform int       shadingHeight;\n"
    "uniform int       shadingDepth;\n"
    "\n"
    "varying vec2 position;\n"
    "varying mat4 shadingTexMat;\n"
    "\n"
    "// from texel centre to texel centre of an axis of n texels\n"
    "float centred(float v, int n)\n"
    "{\n"
    "    float s = float(n - 1) / float(n);\n"
    "    return v * s + (1.0 - s) * 0.5;\n"
    "}\n"
    "\n"
    "void main(void)\n"
    "{\n"
    "    vec4 color = texture2D(grabTexture, gl_TexCoord[0].xy);\n"
    "\n"
    "    color.rgb = clamp(color.rgb, 0.0, 1.0);\n"
    "    color.rgb = pow(color.rgb, vec3(gamma));\n"
    "    color     = color * colorMatrix;\n"
    "\n"
    "    color.r = centred(color.r, shadingDepth);\n"
    "    color.g = centred(color.g, shadingDepth);\n"
    "    color.b = centred(color.b, shadingDepth);\n"
    "\n"
    "    vec2 pos = vec2(centred(position.x, shadingWidth),\n"
    "                    centred(position.y, shadingHeight));\n"
    "\n"
    "    color.r = texture3D(shadingTexture,\n"
    "                        (shadingTexMat * vec4(pos, color.r, 1.0)).xyz).r;\n"
    "    color.g = texture3D(shadingTexture,\n"
    "                        (shadingTexMat * vec4(pos, color.g, 1.0)).xyz).g;\n"
    "    color.b = texture3D(shadingTexture,\n"
    "                        (shadingTexMat * vec4(pos, color.b, 1.0)).xyz).b;\n"
    "\n"
    "    gl_FragColor = color;\n"
    "}\n";

} // namespace

ColorDisplayFilter::ColorDisplayFilter(void)
    : Inherited(), _shadingImage(NullFC), _shlChunk(NullFC)
{
}

ColorDisplayFilter::ColorDisplayFilter(const ColorDisplayFilter &source)
    : Inherited(source), _shadingImage(NullFC), _shlChunk(NullFC)
{
}

ColorDisplayFilter::~ColorDisplayFilter(void)
{
}

void ColorDisplayFilter::initMethod(void)
{
}

void ColorDisplayFilter::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ColorDisplayFilter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ColorDisplayFilter NI" << std::endl;
}

void ColorDisplayFilter::createFilter(DisplayFilterForeground *fg, Viewport *)
{
    DisplayFilterForeground::DisplayFilterGroup *group =
        fg->findReadbackGroup("ColorDisplayFilter");

    _shlChunk = SHLChunk::create();
    beginEditCP(_shlChunk);
    _shlChunk->setVertexProgram(colorFilterVertexProgram);
    _shlChunk->setFragmentProgram(colorFilterFragmentProgram);
    _shlChunk->setUniformParameter("grabTexture", Int32(0));
    _shlChunk->setUniformParameter("shadingTexture", Int32(1));
    endEditCP(_shlChunk);

    _shadingImage = Image::create();

    TextureChunkPtr shading = TextureChunk::create();
    beginEditCP(shading);
    shading->setImage(_shadingImage);
    shading->setMinFilter(GL_LINEAR);
    shading->setMagFilter(GL_LINEAR);
    shading->setWrapS(GL_CLAMP_TO_EDGE);
    shading->setWrapT(GL_CLAMP_TO_EDGE);
    shading->setWrapR(GL_CLAMP_TO_EDGE);
    shading->setScale(false);
    shading->setNPOTMatrixScale(TextureChunk::NPotTexScale_TT);
    endEditCP(shading);

    // The grab is unit 0, so the table becomes unit 1.
    ChunkMaterialPtr mat = group->getMaterial();
    beginEditCP(mat, ChunkMaterial::ChunksFieldMask);
    mat->addChunk(shading);
    mat->addChunk(_shlChunk);
    endEditCP(mat, ChunkMaterial::ChunksFieldMask);

    updateFilterValues();
}

void ColorDisplayFilter::updateFilterValues(void)
{
    if(_shadingImage == NullFC || _shlChunk == NullFC)
        return;

    UInt32 w = getWidth();
    UInt32 h = getHeight();
    UInt32 d = getDepth();

    std::vector<UInt8> table;

    if(getTable().size() == size_t(w) * h * d)
    {
        table.resize(getTable().size() * 3);

        for(UInt32 i = 0; i < getTable().size(); ++i)
            for(UInt32 c = 0; c < 3; ++c)
                table[i * 3 + c] = UInt8(getTable(i)[c] * 255.f);
    }
    else
    {
        FWARNING(("Wrong shanding table size\n"));

        w = 1;
        h = 1;
        d = 2;

        const UInt8 ramp[6] = {0, 0, 0, 255, 255, 255};
        table.assign(ramp, ramp + 6);
    }

    beginEditCP(_shadingImage);
    _shadingImage->set(GL_RGB, w, h, d, 1, 1, 0.0, table.empty() ? NULL : &table[0],
                       GL_UNSIGNED_BYTE);
    endEditCP(_shadingImage);

    beginEditCP(_shlChunk);
    _shlChunk->setUniformParameter("colorMatrix", getMatrix());
    _shlChunk->setUniformParameter("gamma", getGamma());
    _shlChunk->setUniformParameter("shadingWidth", Int32(w));
    _shlChunk->setUniformParameter("shadingHeight", Int32(h));
    _shlChunk->setUniformParameter("shadingDepth", Int32(d));
    endEditCP(_shlChunk);
}

OSG_END_NAMESPACE

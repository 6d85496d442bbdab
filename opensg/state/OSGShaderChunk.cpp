#include <OpenSG/OSGShaderChunk.h>

#include <fstream>
#include <iterator>

OSG_BEGIN_NAMESPACE

namespace
{
std::string readAll(std::istream &stream)
{
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}
} // namespace

ShaderChunk::ShaderChunk(void) : Inherited()
{
}

ShaderChunk::ShaderChunk(const ShaderChunk &source) : Inherited(source)
{
}

ShaderChunk::~ShaderChunk(void)
{
}

void ShaderChunk::initMethod(void)
{
}

bool ShaderChunk::readVertexProgram(const char *file)
{
    std::ifstream s(file != NULL ? file : "");
    if(file == NULL || !s.good())
    {
        FWARNING(("ShaderChunk::readVertexProgram: couldn't open '%s' for reading!\n",
                  file != NULL ? file : "(null)"));
        return false;
    }
    return readVertexProgram(s);
}

bool ShaderChunk::readVertexProgram(std::istream &stream)
{
    setVertexProgram(readAll(stream));
    return true;
}

bool ShaderChunk::readFragmentProgram(const char *file)
{
    std::ifstream s(file != NULL ? file : "");
    if(file == NULL || !s.good())
    {
        FWARNING(("ShaderChunk::readFragmentProgram: couldn't open '%s' for reading!\n",
                  file != NULL ? file : "(null)"));
        return false;
    }
    return readFragmentProgram(s);
}

bool ShaderChunk::readFragmentProgram(std::istream &stream)
{
    setFragmentProgram(readAll(stream));
    return true;
}

void ShaderChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderChunk NI" << std::endl;
}

OSG_END_NAMESPACE

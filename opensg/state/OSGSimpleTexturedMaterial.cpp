#include <OpenSG/OSGSimpleTexturedMaterial.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

SimpleTexturedMaterial::SimpleTexturedMaterial(void)
    : Inherited(), _textureChunk(), _texGenChunk()
{
}

// the private chunks are made anew for every copy
SimpleTexturedMaterial::SimpleTexturedMaterial(const SimpleTexturedMaterial &source)
    : Inherited(source), _textureChunk(), _texGenChunk()
{
}

SimpleTexturedMaterial::~SimpleTexturedMaterial(void)
{
}

void SimpleTexturedMaterial::initMethod(void)
{
}

void SimpleTexturedMaterial::onCreate(const SimpleTexturedMaterial *source)
{
    Inherited::onCreate(source);
    if(source != NULL && getImage() != NullFC)
        addRefCP(getImage());
}

void SimpleTexturedMaterial::onDestroy(void)
{
    if(getImage() != NullFC)
    {
        ImagePtr img = getImage();
        _sfImage.setValue(NullFC);
        subRefCP(img);
    }
    if(_textureChunk != NullFC)
    {
        TextureChunkPtr chunk = _textureChunk;
        _textureChunk         = NullFC;
        subRefCP(chunk);
    }
    if(_texGenChunk != NullFC)
    {
        TexGenChunkPtr chunk = _texGenChunk;
        _texGenChunk         = NullFC;
        subRefCP(chunk);
    }
    Inherited::onDestroy();
}

void SimpleTexturedMaterial::setImage(const ImagePtr &image)
{
    if(image == getImage())
        return;
    ImagePtr old = getImage();
    if(image != NullFC)
        addRefCP(image);
    _sfImage.setValue(image);
    if(old != NullFC)
        subRefCP(old);
}

void SimpleTexturedMaterial::makeLocalChunks(void)
{
    if(_textureChunk == NullFC)
    {
        _textureChunk = TextureChunk::create();
        addRefCP(_textureChunk);
    }
    if(_texGenChunk == NullFC)
    {
        _texGenChunk = TexGenChunk::create();
        addRefCP(_texGenChunk);
    }
}

void SimpleTexturedMaterial::addTextureChunks(StatePtr state)
{
    makeLocalChunks();
    state->addChunk(_textureChunk);
    state->addChunk(_texGenChunk);

    ImagePtr img = getImage();
    if(img == NullFC || !img->hasAlphaChannel() || getEnvMode() == GL_DECAL ||
       _blendChunk == NullFC)
        return;

    // binary alpha is cut out by the alpha test, smooth alpha is blended
    if(img->isAlphaBinary())
    {
        if(_blendChunk->getSrcFactor() != GL_ONE)
        {
            beginEditCP(_blendChunk);
            _blendChunk->setSrcFactor(GL_ONE);
            _blendChunk->setDestFactor(GL_ZERO);
            _blendChunk->setAlphaFunc(GL_NOTEQUAL);
            _blendChunk->setAlphaValue(0);
            endEditCP(_blendChunk);
        }
    }
    else if(_blendChunk->getSrcFactor() != GL_SRC_ALPHA)
    {
        beginEditCP(_blendChunk);
        _blendChunk->setSrcFactor(GL_SRC_ALPHA);
        _blendChunk->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
        _blendChunk->setAlphaFunc(GL_NONE);
        endEditCP(_blendChunk);
    }
}

StatePtr SimpleTexturedMaterial::makeState(void)
{
    StatePtr state = Inherited::makeState();
    addTextureChunks(state);
    return state;
}

void SimpleTexturedMaterial::rebuildState(void)
{
    Inherited::rebuildState();
    addTextureChunks(_pState);
}

bool SimpleTexturedMaterial::isTransparent(void) const
{
    if(Inherited::isTransparent())
        return true;
    ImagePtr img = getImage();
    return img != NullFC && img->hasAlphaChannel() && getEnvMode() != GL_DECAL;
}

void SimpleTexturedMaterial::changed(BitVector whichField, UInt32 origin)
{
    makeLocalChunks();

    if(whichField & ImageFieldMask)
    {
        // a loader or a generic field setter filled the field without counting
        if((origin & ChangedOrigin::Abstract) && getImage() != NullFC)
            addRefCP(getImage());
        beginEditCP(_textureChunk, TextureChunk::ImageFieldMask);
        _textureChunk->setImage(getImage());
        endEditCP(_textureChunk, TextureChunk::ImageFieldMask);
    }
    if(whichField & (MinFilterFieldMask | MagFilterFieldMask))
    {
        beginEditCP(_textureChunk, TextureChunk::MinFilterFieldMask | TextureChunk::MagFilterFieldMask);
        _textureChunk->setMinFilter(getMinFilter());
        _textureChunk->setMagFilter(getMagFilter());
        endEditCP(_textureChunk, TextureChunk::MinFilterFieldMask | TextureChunk::MagFilterFieldMask);
    }
    if(whichField & EnvModeFieldMask)
    {
        beginEditCP(_textureChunk, TextureChunk::EnvModeFieldMask);
        _textureChunk->setEnvMode(getEnvMode());
        endEditCP(_textureChunk, TextureChunk::EnvModeFieldMask);
    }
    if(whichField & EnvMapFieldMask)
    {
        const GLenum func = getEnvMap() ? GL_SPHERE_MAP : GL_NONE;
        beginEditCP(_texGenChunk, TexGenChunk::GenFuncSFieldMask | TexGenChunk::GenFuncTFieldMask);
        _texGenChunk->setGenFuncS(func);
        _texGenChunk->setGenFuncT(func);
        endEditCP(_texGenChunk, TexGenChunk::GenFuncSFieldMask | TexGenChunk::GenFuncTFieldMask);
    }

    Inherited::changed(whichField, origin);
}

void SimpleTexturedMaterial::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SimpleTexturedMaterial NI" << std::endl;
}

OSG_END_NAMESPACE

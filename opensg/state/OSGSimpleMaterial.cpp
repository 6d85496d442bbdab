#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

SimpleMaterial::SimpleMaterial(void) : Inherited(), _materialChunk(), _blendChunk()
{
}

// the private chunks are made anew for every copy, at its first rebuild
SimpleMaterial::SimpleMaterial(const SimpleMaterial &source)
    : Inherited(source), _materialChunk(), _blendChunk()
{
}

SimpleMaterial::~SimpleMaterial(void)
{
}

void SimpleMaterial::initMethod(void)
{
}

void SimpleMaterial::onDestroy(void)
{
    if(_materialChunk != NullFC)
    {
        MaterialChunkPtr chunk = _materialChunk;
        _materialChunk         = NullFC;
        subRefCP(chunk);
    }
    if(_blendChunk != NullFC)
    {
        BlendChunkPtr chunk = _blendChunk;
        _blendChunk         = NullFC;
        subRefCP(chunk);
    }
    Inherited::onDestroy();
}

void SimpleMaterial::prepareLocalChunks(void)
{
    if(_materialChunk == NullFC)
    {
        _materialChunk = MaterialChunk::create();
        addRefCP(_materialChunk);
    }

    Real32 alpha = 1.f - getTransparency();

    beginEditCP(_materialChunk);
    {
        const Color3f &a = getAmbient();
        const Color3f &d = getDiffuse();
        const Color3f &s = getSpecular();
        const Color3f &e = getEmission();
        _materialChunk->setAmbient(Color4f(a[0], a[1], a[2], alpha));
        _materialChunk->setDiffuse(Color4f(d[0], d[1], d[2], alpha));
        _materialChunk->setSpecular(Color4f(s[0], s[1], s[2], alpha));
        _materialChunk->setEmission(Color4f(e[0], e[1], e[2], alpha));
        _materialChunk->setShininess(getShininess());
        _materialChunk->setLit(getLit());
        _materialChunk->setColorMaterial(getColorMaterial());
    }
    endEditCP(_materialChunk);

    if(isTransparent() && _blendChunk == NullFC)
    {
        _blendChunk = BlendChunk::create();
        addRefCP(_blendChunk);
        beginEditCP(_blendChunk);
        _blendChunk->setSrcFactor(GL_SRC_ALPHA);
        _blendChunk->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
        endEditCP(_blendChunk);
    }
}

void SimpleMaterial::addLocalChunks(StatePtr state)
{
    state->addChunk(_materialChunk);
    if(isTransparent())
        state->addChunk(_blendChunk);
}

StatePtr SimpleMaterial::makeState(void)
{
    prepareLocalChunks();
    StatePtr state = State::create();
    addLocalChunks(state);
    addChunks(state);
    return state;
}

void SimpleMaterial::rebuildState(void)
{
    prepareLocalChunks();
    if(_pState != NullFC)
    {
        _pState->clearChunks();
    }
    else
    {
        _pState = State::create();
        addRefCP(_pState);
    }
    addLocalChunks(_pState);
    addChunks(_pState);
}

bool SimpleMaterial::isTransparent(void) const
{
    return getTransparency() > 1e-6f || Inherited::isTransparent();
}

void SimpleMaterial::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void SimpleMaterial::dump(UInt32, const BitVector) const
{
    SLOG << "SimpleMaterial at " << this << std::endl;
}

OSG_END_NAMESPACE

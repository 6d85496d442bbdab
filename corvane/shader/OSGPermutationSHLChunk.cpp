#include <OpenSG/OSGPermutationSHLChunk.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGCameraDecorator.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGStereoCameraDecorator.h>
#include <OpenSG/OSGViewport.h>

OSG_BEGIN_NAMESPACE

namespace
{
/// Above this many permutations the next activation empties the cache.
const size_t MaxPermutations = 128;
/// At this many state blocks the next use empties their cache.
const size_t MaxStateBlocks = 129;
/// A longer decoratee chain is taken for a cycle.
const UInt32 MaxDecoratorDepth = 64;

/// 1 for the left eye, 0 for the right one, -1 without a stereo decorator
/// on the way down from the action's camera.
Int32 stereoEye(DrawActionBase *action)
{
    if(action == NULL || action->getCamera() == NULL || action->getViewport() == NULL)
        return -1;

    Camera *camera = action->getCamera();
    for(UInt32 depth = 0; depth < MaxDecoratorDepth; ++depth)
    {
        CameraDecorator *decorator = dynamic_cast<CameraDecorator *>(camera);
        if(decorator == NULL)
            return -1;

        StereoCameraDecorator *stereo = dynamic_cast<StereoCameraDecorator *>(decorator);
        if(stereo != NULL)
            return stereo->getLeftEye() ? 1 : 0;

        camera = decorator->getDecoratee().getCPtr();
    }
    return -1;
}

/// 0 without fog, else 1 for GL_LINEAR, 2 for GL_EXP, 3 for GL_EXP2.
Int32 fogMode(void)
{
    if(!glIsEnabled(GL_FOG))
        return 0;

    GLint mode = GL_LINEAR;
    glGetIntegerv(GL_FOG_MODE, &mode);
    if(mode == GL_EXP)
        return 2;
    if(mode == GL_EXP2)
        return 3;
    return 1;
}

/// Sets the uniform of parameter's name and value on target; the type id
/// has told parameter's class.
template <class ParameterT>
void copyUniform(const SHLChunkPtr &target, ShaderParameter *parameter)
{
    target->setUniformParameter(parameter->getName().c_str(),
                                static_cast<ParameterT *>(parameter)->getValue());
}

void define(std::string &out, const char *name, const std::string &value)
{
    out += "#define ";
    out += name;
    out += ' ';
    out += value;
    out += '\n';
}
} // namespace

PermutationSHLChunk::PermutationSHLChunk(void)
    : Inherited(),
      _permutationParameterAccess(NULL),
      _permutationCache(),
      _activePermutation(NullFC),
      _parametersChanged(false),
      _osgParameterCache(),
      _key()
{
}

PermutationSHLChunk::PermutationSHLChunk(const PermutationSHLChunk &source)
    : Inherited(source),
      _permutationParameterAccess(NULL),
      _permutationCache(),
      _activePermutation(NullFC),
      _parametersChanged(false),
      _osgParameterCache(),
      _key()
{
}

PermutationSHLChunk::~PermutationSHLChunk(void)
{
    delete _permutationParameterAccess;
}

void PermutationSHLChunk::initMethod(void)
{
}

void PermutationSHLChunk::onCreate(const PermutationSHLChunk *source)
{
    Inherited::onCreate(source);

    if(GlobalSystemState == Startup)
        return;

    // a copy shares the source's parameters and holds them as its own
    if(source != NULL)
    {
        const MFShaderParameterPtr &params = getPermutationParameters();
        for(UInt32 i = 0; i < params.size(); ++i)
            if(params[i] != NullFC)
                addRefCP(params[i]);
    }

    _permutationParameterAccess = new ShaderParameterAccess(*editMFPermutationParameters());
}

void PermutationSHLChunk::onDestroy(void)
{
    Inherited::onDestroy();

    clearPermutationParameters();
    delete _permutationParameterAccess;
    _permutationParameterAccess = NULL;
}

void PermutationSHLChunk::changed(BitVector whichField, UInt32 origin)
{
    const BitVector sourceFields = VertexProgramFieldMask | FragmentProgramFieldMask |
                                   GeometryProgramFieldMask | CgFrontEndFieldMask |
                                   VertexProgramPrefixFieldMask |
                                   FragmentProgramPrefixFieldMask |
                                   GeometryProgramPrefixFieldMask;

    if(whichField & sourceFields)
        clearPermutationCache();

    if(whichField & ParametersFieldMask)
        _parametersChanged = true;

    Inherited::changed(whichField, origin);
}

void PermutationSHLChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PermutationSHLChunk NI" << std::endl;
}

// --- state chunk ------------------------------------------------------------------------

void PermutationSHLChunk::update(DrawActionBase *)
{
}

void PermutationSHLChunk::activate(DrawActionBase *action, UInt32)
{
    if(_permutationCache.size() > MaxPermutations)
        clearPermutationCache();

    // the key is built in a buffer kept from one activation to the next
    _key.clear();
    appendOSGPermutationParameters(_key, action);
    appendPermutationParameters(_key);

    SHLChunkPtr permutation = findPermutation(_key);
    bool        created     = false;
    if(permutation == NullFC)
    {
        permutation = createPermutation(_key);
        created     = true;
    }

    // a new permutation may sit where a destroyed one sat: it always gets
    // the uniforms
    if(permutation != _activePermutation || created || _parametersChanged)
    {
        _activePermutation = permutation;
        if(_activePermutation != NullFC)
            updateParameters();
    }

    if(_activePermutation != NullFC)
        _activePermutation->activate(action, 0);
}

void PermutationSHLChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32)
{
    PermutationSHLChunk *oldChunk = dynamic_cast<PermutationSHLChunk *>(old);
    if(oldChunk == NULL)
    {
        FWARNING(("PermutationSHLChunk::changeFrom: caught non-PermutationSHLChunk!\n"));
        return;
    }

    oldChunk->deactivate(action, 0);
    activate(action, 0);
}

void PermutationSHLChunk::deactivate(DrawActionBase *action, UInt32)
{
    if(_activePermutation == NullFC)
        return;
    _activePermutation->deactivate(action, 0);
}

bool PermutationSHLChunk::isTransparent(void) const
{
    return getIsTransparent();
}

Real32 PermutationSHLChunk::switchCost(StateChunk *)
{
    return 0;
}

bool PermutationSHLChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool PermutationSHLChunk::operator==(const StateChunk &other) const
{
    return this == &other;
}

bool PermutationSHLChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

// --- permutation parameters -------------------------------------------------------------

bool PermutationSHLChunk::setPermutationParameter(const char *name, const std::string &value)
{
    if(_permutationParameterAccess == NULL)
        return false;
    return _permutationParameterAccess->setParameter<ShaderParameterString>(name, value);
}

bool PermutationSHLChunk::getPermutationParameter(const char *name, std::string &value)
{
    if(_permutationParameterAccess == NULL)
        return false;
    return _permutationParameterAccess->getParameter<ShaderParameterString>(name, value);
}

bool PermutationSHLChunk::subPermutationParameter(const char *name)
{
    if(_permutationParameterAccess == NULL)
        return false;
    return _permutationParameterAccess->subParameter(name);
}

void PermutationSHLChunk::clearPermutationParameters(void)
{
    MFShaderParameterPtr &params = *editMFPermutationParameters();
    for(UInt32 i = 0; i < params.size(); ++i)
        if(params[i] != NullFC)
            subRefCP(params[i]);
    params.clear();

    if(_permutationParameterAccess != NULL)
        _permutationParameterAccess->updateMap();
}

// --- the permutations -------------------------------------------------------------------

void PermutationSHLChunk::clearPermutationCache(void)
{
    for(PermutationCache::iterator it = _permutationCache.begin();
        it != _permutationCache.end(); ++it)
    {
        SHLChunkPtr permutation = it->second;
        subRefCP(permutation);
    }
    _permutationCache.clear();

    // the active permutation is gone with the others: nothing is left to
    // deactivate, and the next activation takes a new one
    _activePermutation = NullFC;
}

SHLChunkPtr PermutationSHLChunk::findPermutation(const std::string &key)
{
    PermutationCache::const_iterator it = _permutationCache.find(key);
    return it != _permutationCache.end() ? it->second : SHLChunkPtr(NullFC);
}

SHLChunkPtr PermutationSHLChunk::createPermutation(const std::string &key)
{
    SHLChunkPtr permutation = SHLChunk::create();
    if(permutation == NullFC)
        return permutation;

    const std::string block = "\n" + key + "\n";

    beginEditCP(permutation);
    if(!getVertexProgram().empty())
        permutation->setVertexProgram(getVertexProgramPrefix() + block + getVertexProgram());
    if(!getFragmentProgram().empty())
        permutation->setFragmentProgram(getFragmentProgramPrefix() + block +
                                        getFragmentProgram());
    if(!getGeometryProgram().empty())
        permutation->setGeometryProgram(getGeometryProgramPrefix() + block +
                                        getGeometryProgram());
    permutation->setCgFrontEnd(getCgFrontEnd());
    endEditCP(permutation);

    // the cache holds the permutation's only reference; one made again for
    // the same key replaces the old one
    SHLChunkPtr &entry = _permutationCache[key];
    if(entry != NullFC)
    {
        if(entry == _activePermutation)
            _activePermutation = NullFC;
        SHLChunkPtr old = entry;
        subRefCP(old);
    }
    entry = permutation;

    FNOTICE(("PermutationSHLChunk::createPermutation: New permutation created.\n"));
    return permutation;
}

void PermutationSHLChunk::appendOSGPermutationParameters(std::stringstream &out,
                                                         DrawActionBase    *action)
{
    std::string text;
    appendOSGPermutationParameters(text, action);
    out << text;
}

void PermutationSHLChunk::appendPermutationParameters(std::stringstream &out)
{
    std::string text;
    appendPermutationParameters(text);
    out << text;
}

void PermutationSHLChunk::appendOSGPermutationParameters(std::string &out, DrawActionBase *action)
{
    const Int32   eye    = stereoEye(action);
    const Int32   fog    = fogMode();
    RenderAction *render = dynamic_cast<RenderAction *>(action);
    const UInt32  mask   = render != NULL ? render->getActiveLightsMask() : 0;

    const UInt32 stateKey = (mask & 0xFFu) | (UInt32(eye + 1) << 8) | (UInt32(fog) << 10);

    if(_osgParameterCache.size() >= MaxStateBlocks)
        _osgParameterCache.clear();

    for(size_t i = 0; i < _osgParameterCache.size(); ++i)
    {
        if(_osgParameterCache[i].first == stateKey)
        {
            out += _osgParameterCache[i].second;
            return;
        }
    }

    // numbers through to_string: a stream's locale could group digits
    std::string block;
    UInt32      count = 0;
    for(UInt32 i = 0; i < 8; ++i)
    {
        const UInt32      on   = (mask >> i) & 1u;
        const std::string name = "OSG_LIGHT_" + std::to_string(i) + "_ACTIVE";
        define(block, name.c_str(), on ? "1" : "0");
        count += on;
    }
    define(block, "OSG_ACTIVE_LIGHTS_COUNT", std::to_string(count));
    define(block, "OSG_ACTIVE_LIGHTS_MASK", std::to_string(mask));
    define(block, "OSG_STEREO_LEFT_EYE", std::to_string(eye));
    define(block, "OSG_FOG", std::to_string(fog));

    _osgParameterCache.push_back(OSGParameterCache::value_type(stateKey, block));
    out += block;
}

void PermutationSHLChunk::appendPermutationParameters(std::string &out)
{
    const MFShaderParameterPtr &params = getPermutationParameters();
    for(UInt32 i = 0; i < params.size(); ++i)
    {
        ShaderParameter *parameter = params[i].getCPtr();
        if(parameter == NULL)
        {
            FWARNING(("PermutationSHLChunk::appendPermutationParameters :PermutationParameter "
                      "%u is NullFC, skipped!\n",
                      i));
            continue;
        }

        out += "#define ";
        out += parameter->getName();
        out += ' ';

        // the type id tells the class, without a cast to try
        switch(parameter->getTypeId())
        {
            case ShaderParameter::SHPTypeBool:
                out += static_cast<ShaderParameterBool *>(parameter)->getValue() ? '1' : '0';
                break;
            case ShaderParameter::SHPTypeInt:
                out += std::to_string(static_cast<ShaderParameterInt *>(parameter)->getValue());
                break;
            case ShaderParameter::SHPTypeString:
                out += static_cast<ShaderParameterString *>(parameter)->getValue();
                break;
            default:
                out += "<UnknownType>";
                FWARNING(("PermutationSHLChunk::appendPermutationParameters :PermutationParameter "
                          "%s has unknown type!\n",
                          parameter->getName().c_str()));
                break;
        }
        // no line break: the next define follows on the same line
    }
}

void PermutationSHLChunk::updateParameters(void)
{
    if(_activePermutation != NullFC)
    {
        SHLChunkPtr                 target = _activePermutation;
        const MFShaderParameterPtr &params = getParameters();

        beginEditCP(target, ParametersFieldMask);
        for(UInt32 i = 0; i < params.size(); ++i)
        {
            ShaderParameterPtr parameter = params[i];
            if(parameter == NullFC)
                continue;

            ShaderParameter *p = parameter.getCPtr();
            switch(parameter->getTypeId())
            {
                case ShaderParameter::SHPTypeBool:
                    copyUniform<ShaderParameterBool>(target, p);
                    break;
                case ShaderParameter::SHPTypeInt:
                    copyUniform<ShaderParameterInt>(target, p);
                    break;
                case ShaderParameter::SHPTypeReal:
                    copyUniform<ShaderParameterReal>(target, p);
                    break;
                case ShaderParameter::SHPTypeVec2f:
                    copyUniform<ShaderParameterVec2f>(target, p);
                    break;
                case ShaderParameter::SHPTypeVec3f:
                    copyUniform<ShaderParameterVec3f>(target, p);
                    break;
                case ShaderParameter::SHPTypeVec4f:
                    copyUniform<ShaderParameterVec4f>(target, p);
                    break;
                case ShaderParameter::SHPTypeMatrix:
                    copyUniform<ShaderParameterMatrix>(target, p);
                    break;
                case ShaderParameter::SHPTypeMInt:
                    copyUniform<ShaderParameterMInt>(target, p);
                    break;
                case ShaderParameter::SHPTypeMReal:
                    copyUniform<ShaderParameterMReal>(target, p);
                    break;
                case ShaderParameter::SHPTypeMVec2f:
                    copyUniform<ShaderParameterMVec2f>(target, p);
                    break;
                case ShaderParameter::SHPTypeMVec3f:
                    copyUniform<ShaderParameterMVec3f>(target, p);
                    break;
                case ShaderParameter::SHPTypeMVec4f:
                    copyUniform<ShaderParameterMVec4f>(target, p);
                    break;
                case ShaderParameter::SHPTypeMMatrix:
                    copyUniform<ShaderParameterMMatrix>(target, p);
                    break;
                default:
                    break;
            }
        }
        endEditCP(target, ParametersFieldMask);
    }

    _parametersChanged = false;
}

OSG_END_NAMESPACE

#include <OpenSG/OSGVolumeNode.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGBasicVolumeShadingStyle.h>
#include <OpenSG/BVGeometry.h>
#include <OpenSG/NormalVolume.h>
#include <OpenSG/PreCentralDiffNormal.h>
#include <OpenSG/PreintTransferFunction.h>
#include <OpenSG/RayGeneration.h>
#include <OpenSG/ShadingFunctions.h>
#include <OpenSG/SimpleTransferfunction.h>
#include <OpenSG/TraversalFunctions.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/VolumeNodeHandler.h>

#include <cstdio>

OSG_BEGIN_NAMESPACE

namespace
{

RayGeneration *makeRayGeneration(UInt32 type)
{
    switch(type)
    {
        case 1:
            return new SimpleRay;
        case 2:
            return new InterleavedRay;
        default:
            return NULL;
    }
}

TraversalFunctions *makeTraversal(UInt32 type)
{
    switch(type)
    {
        case 1:
            return new SimpleTraversal;
        case 2:
            return new BlockSkippingTraversal;
        default:
            return NULL;
    }
}

/// Precomputed normals for 1 and for any other value when a normal
/// volume is given; an other value without one keeps the former strategy.
NormalVolume *makeNormals(UInt32 type, const TextureChunkPtr &normals)
{
    switch(type)
    {
        case 1:
            return new PreCentralDiffNormal(normals);
        case 2:
            return new OnlineCentralDiffNormal;
        case 3:
            return new OnlineSobelNormal;
        default:
            return normals != NullFC ? new PreCentralDiffNormal(normals) : NULL;
    }
}

BVGeometry *makeBVGeometry(UInt32 type)
{
    switch(type)
    {
        case 1:
            return new BoxGeometry;
        case 2:
            return new BoundaryGeometry;
        default:
            return NULL;
    }
}

} // namespace

VolumeNode::VolumeNode(void) : Inherited()
{
}

// a copy (every create() is one) starts without a handler of its own
VolumeNode::VolumeNode(const VolumeNode &source) : Inherited(source)
{
}

VolumeNode::~VolumeNode(void)
{
    // the handler's nodes may still hang in a scene that outlives this core:
    // they keep the references that scene holds, the handler lets go of its own
    delete _volume;
    _volume = NULL;
}

void VolumeNode::initMethod(void)
{
    typedef Action::ResultE R;
    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, VolumeNodePtr, CNodePtr, Action *>(
            &VolumeNode::renderEnter));
    RenderAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, VolumeNodePtr, CNodePtr, Action *>(
            &VolumeNode::renderLeave));
    IntersectAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, VolumeNodePtr, CNodePtr, Action *>(
            &VolumeNode::intersect));
}

void VolumeNode::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & (VoxelsFieldMask | SwappedFieldMask | SliceThicknessFieldMask))
        createVolume();
    _pendingChanges |= whichField;
    Inherited::changed(whichField, origin);
}

void VolumeNode::dump(UInt32, const BitVector) const
{
    SLOG << "Dump VolumeNode NI" << std::endl;
}

void VolumeNode::setVolume(VolumeNodeHandler *volume)
{
    if(volume != _volume)
        delete _volume;
    _volume = volume;
}

bool VolumeNode::createVolume(void)
{
    TextureChunkPtr voxels = getVoxels();
    ImagePtr        image  = voxels != NullFC ? voxels->getImage() : ImagePtr(NullFC);
    if(image != NullFC)
    {
        // VolumeData reads the thickness back from the image
        char thickness[128];
        snprintf(thickness, sizeof(thickness), "%f %f %f", getSliceThickness()[0],
                 getSliceThickness()[1], getSliceThickness()[2]);
        image->setAttachmentField("SliceThickness", thickness);
        if(image->getWidth() <= 1 || image->getHeight() <= 1 || image->getDepth() <= 1)
        {
            SWARNING << "Error setting volume, image too small! Retrying..." << std::endl;
            return false;
        }
    }

    VolumeNodeHandler *handler = new VolumeNodeHandler;
    if(image != NullFC && handler->setVolume(voxels, getSwapped()))
    {
        SNOTICE << "New volume texture was set..." << std::endl;
        // the defaults of every new handler; the next initVolume applies
        // the fields, and the last setter builds the graphs
        handler->setDimensions(getDimensions());
        handler->setRayGeneration(new SimpleRay);
        handler->setTransferfunction(new SimpleTransferfunction(0));
        handler->setNormalfunction(new OnlineCentralDiffNormal);
        handler->setShadingfunction(new DVRShading);
        handler->setBVGeometry(new BoundaryGeometry);
        handler->setTraversalfunction(new SimpleTraversal);
        setVolume(handler);
        return true;
    }

    SFATAL << "Error setting the volume!" << std::endl;
    delete handler;
    setVolume(NULL);
    return false;
}

bool VolumeNode::initVolume(void)
{
    VolumeNodeHandler *handler = _volume;
    if(handler == NULL)
        return false;

    const BitVector pending = _pendingChanges;
    const bool      all     = (pending & (VoxelsFieldMask | SwappedFieldMask |
                                          SliceThicknessFieldMask)) != 0;
    bool applied = false;

    if(all || (pending & StepSizeFieldMask))
    {
        handler->setStepSize(getStepSize());
        applied = true;
    }
    if(all || (pending & RayGenTypeFieldMask))
    {
        RayGeneration *ray = makeRayGeneration(getRayGenType());
        if(ray != NULL)
            handler->setRayGeneration(ray);
        applied = true;
    }
    if(all || (pending & (TransferFuncFieldMask | TransferFuncTypeFieldMask)))
    {
        Transferfunction *transfer = getTransferFuncType() == 2
                                         ? static_cast<Transferfunction *>(new PreintTransferFunction(0))
                                         : new SimpleTransferfunction(0);
        if(getTransferFunc() != NullFC)
            transfer->setFunc(getTransferFunc());
        else
            transfer->init(handler->getVolumeData());
        handler->setTransferfunction(transfer);
        applied = true;
    }
    if(all || (pending & (NormalsFieldMask | NormalGenTypeFieldMask)))
    {
        NormalVolume *normals = makeNormals(getNormalGenType(), getNormals());
        if(normals != NULL)
            handler->setNormalfunction(normals);
        applied = true;
    }

    VolumeShadingStyle *style        = dynamic_cast<VolumeShadingStyle *>(getCPtr(getShadingStyle()));
    bool                styleApplied = false;
    if(all || (pending & ShadingStyleFieldMask) || (style != NULL && style->hasChanged()))
    {
        if(style != NULL)
            style->paramShading(handler);
        else
            handler->setShadingfunction(new DVRShading);
        styleApplied = true;
        applied      = true;
    }
    if(all || (pending & ComposableStyleFieldMask))
    {
        // the composable styles below set the gradient factor anew
        DVRShadingBase *dvr = dynamic_cast<DVRShadingBase *>(handler->getShadingfunction());
        if(dvr != NULL)
        {
            dvr->_gradientOpacity = false;
            handler->initMaterial();
        }
        applied = true;
    }
    for(UInt32 i = 0; i < getComposableStyle().size(); ++i)
    {
        VolumeShadingStyle *entry =
            dynamic_cast<VolumeShadingStyle *>(getCPtr(getComposableStyle()[i]));
        if(entry == NULL)
            continue;
        if(entry->hasChanged() || (pending & ComposableStyleFieldMask) || all || styleApplied)
        {
            entry->paramShading(handler);
            applied = true;
        }
    }
    if(all || (pending & BvGeoTypeFieldMask))
    {
        BVGeometry *geometry = makeBVGeometry(getBvGeoType());
        if(geometry != NULL)
            handler->setBVGeometry(geometry);
        applied = true;
    }
    if(all || (pending & TraversalTypeFieldMask))
    {
        TraversalFunctions *traversal = makeTraversal(getTraversalType());
        if(traversal != NULL)
            handler->setTraversalfunction(traversal);
        applied = true;
    }

    if(applied)
        SNOTICE << "VolumeNode::initVolume()" << std::endl;
    _pendingChanges = 0;
    return applied;
}

bool VolumeNode::attachVolume(void)
{
    NodePtr raycaster = _volume != NULL ? _volume->getRaycasterNode() : NodePtr(NullFC);
    if(raycaster == NullFC)
    {
        SFATAL << "VolumeNode::attachVolume() -> No Volume!\n"
               << static_cast<const void *>(_volume) << "; " << raycaster << std::endl;
        invalidateVolume();
        return false;
    }
    if(getParents().empty())
    {
        invalidateVolume();
        return false;
    }

    // OpenSG's addChild takes the node from its former parent, so with
    // several parents the ray caster ends under the last of them; every
    // parent loses its former children
    bool served = false;
    for(UInt32 i = 0; i < getParents().size(); ++i)
    {
        NodePtr parent = getParents()[i];
        if(parent == NullFC)
        {
            FFATAL(("VolumeNode::attachVolume() -> No Parent!\n"));
            continue;
        }
        beginEditCP(parent, Node::ChildrenFieldMask);
        for(Int32 c = Int32(parent->getNChildren()) - 1; c >= 0; --c)
            parent->subChild(UInt32(c));
        parent->addChild(raycaster);
        endEditCP(parent, Node::ChildrenFieldMask);
        raycaster->invalidateVolume();
        served = true;
    }
    invalidateVolume();
    if(served)
        SNOTICE << "VolumeNode::attachVolume() -> Parent OK!" << std::endl;
    return served;
}

Action::ResultE VolumeNode::renderEnter(Action *action)
{
    // the ray caster's quad says nothing about where the volume is: it
    // must not be culled
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    if(ra != NULL)
    {
        _savedFrustumCulling = ra->getFrustumCulling();
        ra->setFrustumCulling(false);
    }
    return Action::Continue;
}

Action::ResultE VolumeNode::renderLeave(Action *action)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    if(ra != NULL)
        ra->setFrustumCulling(_savedFrustumCulling);
    return Action::Continue;
}

Action::ResultE VolumeNode::intersect(Action *action)
{
    IntersectAction *ia   = dynamic_cast<IntersectAction *>(action);
    NodePtr          node = action->getActNode();
    if(ia == NULL || node == NullFC)
        return Action::Continue;
    const DynamicVolume &volume = node->getVolume(true);
    if(!volume.isValid())
        return Action::Continue;
    return volume.intersect(ia->getLine()) ? Action::Continue : Action::Skip;
}

void VolumeNode::adjustVolume(Volume &volume)
{
    TextureChunkPtr voxels = getVoxels();
    ImagePtr        image  = voxels != NullFC ? voxels->getImage() : ImagePtr(NullFC);
    if(image == NullFC)
        return;
    // in voxels, whatever the dimensions and thickness say
    const Real32 w = Real32(image->getWidth()), h = Real32(image->getHeight()),
                 d = Real32(image->getDepth());
    volume.setValid();
    volume.setEmpty();
    volume.extendBy(Pnt3f(w / 2.f, h / 2.f, d / 2.f));
    volume.extendBy(Pnt3f(-w / 2.f, -h / 2.f, -d / 2.f));
}

OSG_END_NAMESPACE

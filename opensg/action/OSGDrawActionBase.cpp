#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGDrawable.h>
#include <OpenSG/OSGFrustumVolume.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGViewport.h>

OSG_BEGIN_NAMESPACE

StatElemDesc<StatTimeElem> DrawActionBase::statTravTime("travTime",
                                                        "time for traversal");
StatElemDesc<StatIntElem> DrawActionBase::statCullTestedNodes("cullTestedNodes",
                                                              "nodes tested against the frustum");
StatElemDesc<StatIntElem> DrawActionBase::statCulledNodes("culledNodes",
                                                          "nodes culled by the frustum");

DrawActionBase::DrawActionBase(void)
    : Action(), _camera(NULL), _background(NULL), _window(NULL), _viewport(NULL),
      _statistics(NULL), _ownStat(false), _resetStat(true), _pMaterial(NULL), _pMaterialNode(),
      _frustumCulling(true), _volumeDrawing(false), _autoFrustum(true),
      _frustum(new FrustumVolume), _mCameraToWorld(), _drawnVolumes()
{
}

DrawActionBase::DrawActionBase(const DrawActionBase &source)
    : Action(source), _camera(source._camera), _background(source._background),
      _window(source._window), _viewport(source._viewport),
      // a collector the source owns stays the source's
      _statistics(source._ownStat ? NULL : source._statistics), _ownStat(false),
      _resetStat(source._resetStat), _pMaterial(NULL), _pMaterialNode(),
      _frustumCulling(source._frustumCulling), _volumeDrawing(source._volumeDrawing),
      _autoFrustum(source._autoFrustum), _frustum(new FrustumVolume(*source._frustum)),
      _mCameraToWorld(source._mCameraToWorld), _drawnVolumes()
{
}

DrawActionBase::~DrawActionBase(void)
{
    if(_ownStat)
        delete _statistics;
    delete _frustum;
}

StatCollector *DrawActionBase::getStatistics(void)
{
    if(_statistics == NULL)
    {
        _statistics = StatCollector::create();
        _ownStat    = true;
    }
    return _statistics;
}

void DrawActionBase::setStatistics(StatCollector *statistics)
{
    if(_ownStat)
        delete _statistics;

    _statistics = statistics;
    _ownStat    = false;
}

void DrawActionBase::setMaterial(Material *material, NodePtr node)
{
    _pMaterial     = material;
    _pMaterialNode = node;
}

void DrawActionBase::setFrustum(FrustumVolume &frustum)
{
    *_frustum = frustum;
}

UInt32 DrawActionBase::selectVisibles(void)
{
    if(!getFrustumCulling())
        return getNNodes();

    useNodeList();

    UInt32 count = 0;
    UInt32 n     = getNNodes();
    for(UInt32 i = 0; i < n; ++i)
    {
        NodePtr node = getNode(i);
        if(isVisible(node.getCPtr()))
        {
            addNode(node);
            ++count;
        }
    }
    return count;
}

Action::ResultE DrawActionBase::start(void)
{
    if(_frustumCulling && _autoFrustum && _camera != NULL && _viewport != NULL)
        _camera->getFrustum(*_frustum, *_viewport);

    if(_camera != NULL && _viewport != NULL)
    {
        Matrix m;
        _camera->getViewing(m, _viewport->getPixelWidth(), _viewport->getPixelHeight());
        _mCameraToWorld.invertFrom(m);
    }

    StatCollector *sc = getStatistics();

    if(_resetStat)
    {
        sc->getElem(statTravTime)->reset();
        sc->getElem(statCullTestedNodes)->reset();
        sc->getElem(statCulledNodes)->reset();

        // Drawable counters are reset only where a user asked for them.
        if(sc->getElem(Drawable::statNTriangles, false) != NULL)
        {
            sc->getElem(Drawable::statNGeoBytes)->reset();
            sc->getElem(Drawable::statNTriangles)->set(0);
            sc->getElem(Drawable::statNLines)->set(0);
            sc->getElem(Drawable::statNPoints)->set(0);
            sc->getElem(Drawable::statNVertices)->set(0);
            sc->getElem(Drawable::statNPrimitives)->set(0);
        }
    }

    _drawnVolumes.clear();

    sc->getElem(statTravTime)->start();

    return Continue;
}

Action::ResultE DrawActionBase::stop(ResultE res)
{
    if(_volumeDrawing)
        drawQueuedVolumes();

    getStatistics()->getElem(statTravTime)->stop();

    if(_ownStat)
    {
        delete _statistics;
        _statistics = NULL;
        _ownStat    = false;
    }

    return res;
}

void DrawActionBase::queueVolume(const Volume &worldVolume)
{
    if(!_volumeDrawing || worldVolume.isEmpty() || worldVolume.isInfinite())
        return;

    Pnt3f mi, ma;
    worldVolume.getBounds(mi, ma);
    _drawnVolumes.push_back(mi);
    _drawnVolumes.push_back(ma);
}

void DrawActionBase::drawQueuedVolumes(void)
{
    // Wire boxes of the tested volumes and the frustum's corners, in world
    // space, over the image.
    Matrix viewing;
    viewing.invertFrom(_mCameraToWorld);

    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadMatrixf(viewing.getValues());

    glColor3f(0.f, 1.f, 0.f);
    for(size_t i = 0; i + 1 < _drawnVolumes.size(); i += 2)
    {
        const Pnt3f &a = _drawnVolumes[i];
        const Pnt3f &b = _drawnVolumes[i + 1];
        Pnt3f        c[8];
        for(int k = 0; k < 8; ++k)
            c[k] = Pnt3f((k & 1) ? b[0] : a[0], (k & 2) ? b[1] : a[1], (k & 4) ? b[2] : a[2]);

        static const int edges[12][2] = {{0, 1}, {2, 3}, {4, 5}, {6, 7}, {0, 2}, {1, 3},
                                         {4, 6}, {5, 7}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
        glBegin(GL_LINES);
        for(int e = 0; e < 12; ++e)
        {
            glVertex3fv(c[edges[e][0]].getValues());
            glVertex3fv(c[edges[e][1]].getValues());
        }
        glEnd();
    }

    Pnt3f corners[8];
    if(_frustum->getCorners(corners))
    {
        // nlt, nlb, nrt, nrb, flt, flb, frt, frb
        static const int edges[12][2] = {{0, 1}, {1, 3}, {3, 2}, {2, 0}, {4, 5}, {5, 7},
                                         {7, 6}, {6, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
        glColor3f(1.f, 1.f, 0.f);
        glBegin(GL_LINES);
        for(int e = 0; e < 12; ++e)
        {
            glVertex3fv(corners[edges[e][0]].getValues());
            glVertex3fv(corners[edges[e][1]].getValues());
        }
        glEnd();
    }

    glPopMatrix();
    glPopAttrib();

    _drawnVolumes.clear();
}

OSG_END_NAMESPACE

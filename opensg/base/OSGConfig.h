/// Configuration macros of the host core (the default Linux build of OpenSG 1.8).
#ifndef _OSGCONFIG_H_
#define _OSGCONFIG_H_

#define OSG osg
#define OSG_BEGIN_NAMESPACE namespace osg {
#define OSG_END_NAMESPACE }
#define OSG_USING_NAMESPACE \
    namespace osg {}        \
    using namespace osg;

#define OSG_CHECK_ARG(ARG)
#define OSG_BASE_DLLMAPPING
#define OSG_SYSTEMLIB_DLLMAPPING
#define OSG_BASE_DLLTMPLMAPPING
#define OSG_SYSTEMLIB_DLLTMPLMAPPING
#define OSG_DLLEXPORT

#define OSG_FUNCNAME_MACRO __PRETTY_FUNCTION__

// The late state of the 1.8 line, which the host core follows.
#define OSG_MAJOR_VERSION 1
#define OSG_MINOR_VERSION 8
#define OSG_RELEASE_VERSION 1
#define OSG_VERSION_STRING "1.8.1Alpha"

// Two aspects unless ThreadManager::setNumAspects says otherwise.
#define OSG_NUM_ASPECTS 2

#define OSG_LINUX_ICC_NO_DEFAULT 1

#endif

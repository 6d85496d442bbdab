/// The header OpenSG programs include for AttachmentContainer; the class is in OSGAttachmentContainer.h.
#ifndef _OSGATTACHMENTCONTAINERIMPL_H_
#define _OSGATTACHMENTCONTAINERIMPL_H_

#include <OpenSG/OSGAttachmentContainer.h>

#endif

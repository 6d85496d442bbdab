/// The header OpenSG programs include for Attachment; the class is in OSGAttachment.h.
#ifndef _OSGATTACHMENTIMPL_H_
#define _OSGATTACHMENTIMPL_H_

#include <OpenSG/OSGAttachment.h>

#endif

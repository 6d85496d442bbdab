/// The run-time type of a field's value.
#ifndef _OSGDATATYPE_H_
#define _OSGDATATYPE_H_

#include <OpenSG/OSGTypeBase.h>

OSG_BEGIN_NAMESPACE

class DataType : public TypeBase
{
  public:
    DataType(const Char8 *szName, const Char8 *szParentName, UInt32 uiNameSpace = 0);
    virtual ~DataType(void);

    bool operator==(const DataType &other) const { return getId() == other.getId(); }
    bool operator!=(const DataType &other) const { return getId() != other.getId(); }
};

OSG_END_NAMESPACE

#endif

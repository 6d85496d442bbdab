#include <OpenSG/OSGField.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

Field::~Field(void)
{
}

void Field::dump(void) const
{
}

void fieldStringConversionError(bool toString)
{
    if(toString)
        SLOG << "Error To String Conversion not available for " << std::endl;
    else
        SLOG << "Error From String Conversion not available for " << std::endl;
}

OSG_END_NAMESPACE

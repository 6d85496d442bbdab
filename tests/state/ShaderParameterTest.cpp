// Shader parameters: type ids, change flags, and name-based access.
#include <OpenSG/OSGShaderParameterChunk.h>
#include <OpenSG/OSGShaderParameterAccess.h>
#include <OpenSG/OSGLog.h>

#include <gtest/gtest.h>

using namespace osg;

namespace
{
template <class PtrT>
ShaderParameter::SHPType typeOf(void)
{
    PtrT p = PtrT::StoredObjectType::create();
    addRefCP(p);
    ShaderParameter::SHPType t = p->getTypeId();
    subRefCP(p);
    return t;
}

/// An MField of parameters with the access object over it, released at the
/// end like a chunk releases its own.
struct ParameterList
{
    MFShaderParameterPtr  field;
    ShaderParameterAccess access;

    ParameterList(void) : field(), access(field) {}
    ~ParameterList(void)
    {
        for(UInt32 i = 0; i < field.size(); ++i)
            subRefCP(field[i]);
    }
};
} // namespace

TEST(ShaderParameterTest, EveryValueClassCarriesItsTypeId)
{
    EXPECT_EQ(typeOf<ShaderParameterBoolPtr>(), 1);
    EXPECT_EQ(typeOf<ShaderParameterIntPtr>(), 2);
    EXPECT_EQ(typeOf<ShaderParameterRealPtr>(), 3);
    EXPECT_EQ(typeOf<ShaderParameterVec2fPtr>(), 7);
    EXPECT_EQ(typeOf<ShaderParameterVec3fPtr>(), 8);
    EXPECT_EQ(typeOf<ShaderParameterVec4fPtr>(), 9);
    EXPECT_EQ(typeOf<ShaderParameterMatrixPtr>(), 10);
    EXPECT_EQ(typeOf<ShaderParameterStringPtr>(), 11);
    EXPECT_EQ(typeOf<ShaderParameterMIntPtr>(), 13);
    EXPECT_EQ(typeOf<ShaderParameterMRealPtr>(), 14);
    EXPECT_EQ(typeOf<ShaderParameterMVec2fPtr>(), 18);
    EXPECT_EQ(typeOf<ShaderParameterMVec3fPtr>(), 19);
    EXPECT_EQ(typeOf<ShaderParameterMVec4fPtr>(), 20);
    EXPECT_EQ(typeOf<ShaderParameterMMatrixPtr>(), 21);
    EXPECT_EQ(ShaderParameter::SHPTypeMString, 22);

    // the containers are registered under their class names
    EXPECT_NE(FieldContainerFactory::the()->findType("ShaderParameterMVec3f"), nullptr);
}

TEST(ShaderParameterTest, OnlyAnEditOfTheValueMarksTheParameterChanged)
{
    ShaderParameterRealPtr p = ShaderParameterReal::create();
    addRefCP(p);
    EXPECT_FALSE(p->hasChanged());
    EXPECT_EQ(p->getLocation(), -2);   // not looked up yet
    EXPECT_EQ(p->getFlags(), UInt32(ShaderParameter::SHPFlagNone));

    beginEditCP(p, ShaderParameter::NameFieldMask);
    p->setName("r");
    endEditCP(p, ShaderParameter::NameFieldMask);
    EXPECT_FALSE(p->hasChanged());

    beginEditCP(p, ShaderParameterReal::ValueFieldMask);
    p->setValue(0.5f);
    endEditCP(p, ShaderParameterReal::ValueFieldMask);
    EXPECT_TRUE(p->hasChanged());
    p->resetChanged();
    EXPECT_FALSE(p->hasChanged());

    subRefCP(p);
}

TEST(ShaderParameterAccessTest, SetAddsOrUpdatesByNameAndGetReadsBack)
{
    ParameterList list;

    EXPECT_TRUE((list.access.setParameter<ShaderParameterInt>("unit", Int32(3))));
    EXPECT_TRUE((list.access.setParameter<ShaderParameterVec3f>("dir", Vec3f(1, 2, 3))));
    ASSERT_EQ(list.field.size(), 2u);
    EXPECT_EQ(list.field[0].getRefCount(), 1);   // the list holds the only reference
    EXPECT_EQ(list.field[0]->getName(), "unit");
    EXPECT_TRUE(list.field[0]->hasChanged());

    // an update keeps the object and marks it changed again
    ShaderParameterPtr first = list.field[0];
    first->resetChanged();
    EXPECT_TRUE((list.access.setParameter<ShaderParameterInt>("unit", Int32(5))));
    EXPECT_EQ(list.field.size(), 2u);
    EXPECT_EQ(list.field[0], first);
    EXPECT_TRUE(first->hasChanged());

    Int32 unit = 0;
    EXPECT_TRUE((list.access.getParameter<ShaderParameterInt>("unit", unit)));
    EXPECT_EQ(unit, 5);
    Vec3f dir;
    EXPECT_TRUE((list.access.getParameter<ShaderParameterVec3f>("dir", dir)));
    EXPECT_EQ(dir, Vec3f(1, 2, 3));

    MFReal32 values;
    values.push_back(0.25f);
    values.push_back(0.75f);
    EXPECT_TRUE((list.access.setMParameter<ShaderParameterMReal>("weights", values)));
    MFReal32 back;
    EXPECT_TRUE((list.access.getMParameter<ShaderParameterMReal>("weights", back)));
    ASSERT_EQ(back.size(), 2u);
    EXPECT_FLOAT_EQ(back[1], 0.75f);

    EXPECT_FALSE((list.access.setParameter<ShaderParameterInt>(NULL, Int32(1))));
    EXPECT_TRUE(list.access.hasParameter("dir"));
    EXPECT_FALSE(list.access.hasParameter("nothing"));
}

TEST(ShaderParameterAccessTest, WrongTypesAndMissingNamesAreReported)
{
    ParameterList list;
    list.access.setParameter<ShaderParameterString>("mode", std::string("fast"));

    {
        LogCapture cap(LOG_INFO);
        Real32 r = 0;
        EXPECT_FALSE((list.access.setParameter<ShaderParameterReal>("mode", 1.f)));
        EXPECT_FALSE((list.access.getParameter<ShaderParameterReal>("mode", r)));
        EXPECT_FALSE((list.access.getParameter<ShaderParameterReal>("none", r)));
        const std::string &log = cap.str();
        EXPECT_NE(log.find("ShaderParameterAccess::setParameter : Parameter 'mode' has wrong type!"),
                  std::string::npos)
            << log;
        EXPECT_NE(log.find("ShaderParameterAccess::getParameter : Parameter 'mode' has wrong type!"),
                  std::string::npos)
            << log;
        EXPECT_NE(log.find("ShaderParameterAccess::getParameter : Parameter 'none' doesn't exist!"),
                  std::string::npos)
            << log;
    }

    std::string mode;
    EXPECT_TRUE((list.access.getParameter<ShaderParameterString>("mode", mode)));
    EXPECT_EQ(mode, "fast");
    EXPECT_EQ(list.access.getParameterFC<ShaderParameterString>("mode")->getValue(), "fast");
    EXPECT_EQ(list.access.getParameterFC<ShaderParameterInt>("mode"), NullFC);
}

TEST(ShaderParameterAccessTest, SubParameterDropsTheReferenceAndReindexes)
{
    ParameterList list;
    list.access.setParameter<ShaderParameterInt>("a", Int32(1));
    list.access.setParameter<ShaderParameterInt>("b", Int32(2));
    list.access.setParameter<ShaderParameterInt>("c", Int32(3));

    ShaderParameterPtr b = list.field[1];
    addRefCP(b);
    EXPECT_TRUE(list.access.subParameter("b"));
    EXPECT_EQ(b.getRefCount(), 1);
    subRefCP(b);
    EXPECT_FALSE(list.access.subParameter("b"));

    // "c" moved down one place and is still found
    Int32 c = 0;
    EXPECT_TRUE((list.access.getParameter<ShaderParameterInt>("c", c)));
    EXPECT_EQ(c, 3);
    EXPECT_TRUE((list.access.setParameter<ShaderParameterInt>("c", Int32(4))));
    EXPECT_EQ(ShaderParameterIntPtr::dcast(list.field[1])->getValue(), 4);
}

TEST(ShaderParameterAccessTest, WithDuplicateNamesTheFirstWins)
{
    ParameterList list;
    for(Int32 v = 1; v <= 2; ++v)
    {
        ShaderParameterIntPtr p = ShaderParameterInt::create();
        addRefCP(p);
        beginEditCP(p);
        p->setName("dup");
        p->setValue(v);
        endEditCP(p);
        list.field.push_back(p);
    }
    Int32 v = 0;
    EXPECT_TRUE((list.access.getParameter<ShaderParameterInt>("dup", v)));
    EXPECT_EQ(v, 1);
}

// corvane: the project's command-line program.
//
//   corvane types            lists every field-container type
//   corvane fields TYPE...   creates each type by name and prints its fields
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGField.h>
#include <OpenSG/OSGNode.h>

#include <cstdio>
#include <cstring>
#include <string>

OSG_USING_NAMESPACE

namespace
{

int usage(void)
{
    fprintf(stderr,
            "usage: corvane types\n"
            "       corvane fields TYPE...\n");
    return 2;
}

int listTypes(void)
{
    FieldContainerFactory *factory = FieldContainerFactory::the();
    for(FieldContainerFactory::TypeMapIterator it = factory->beginTypes();
        it != factory->endTypes(); ++it)
    {
        FieldContainerType *type = it->second;
        printf("%-32s parent %-24s fields %2u%s\n", type->getCName(),
               type->getParent() ? type->getParent()->getCName() : "-",
               type->getNumFieldDescs(), type->isAbstract() ? "  (abstract)" : "");
    }
    return 0;
}

/// Prints one line a field: id, mask, name, field type and value as text.
void printFields(FieldContainerPtr fc)
{
    FieldContainerType &type = fc->getType();
    printf("%s (type id %u, container id %u)\n", type.getCName(), type.getId(),
           fc.getFieldContainerId());
    for(UInt32 id = 1; id <= type.getNumFieldDescs(); ++id)
    {
        FieldDescription *desc = type.getFieldDescription(id);
        if(desc == NULL)
            continue;
        Field *field = fc->getField(id);
        std::string value;
        const FieldType &ftype = static_cast<const FieldType &>(desc->getFieldType());
        // pointers, attachment maps and volumes have no text form: show
        // how many values they hold instead
        const Char8 *name = ftype.getCName();
        bool noText = strstr(name, "Ptr") != NULL || strstr(name, "AttachmentMap") != NULL ||
                      strstr(name, "Volume") != NULL;
        if(field != NULL && !noText)
            field->getValueByStr(value);
        else if(field != NULL && ftype.getCardinality() == FieldType::MULTI_FIELD)
            value = "[" + std::to_string(field->getSize()) + " values]";
        else if(field != NULL)
            value = "<" + std::string(field->getContentType().getCName()) + ">";
        printf("  %2u  0x%016llx  %-24s %-22s %s%s\n", id,
               (unsigned long long)desc->getFieldMask(), desc->getCName(), ftype.getCName(),
               value.c_str(), desc->isInternal() ? "  (internal)" : "");
    }
}

int showFields(int argc, char **argv)
{
    int failures = 0;
    for(int i = 0; i < argc; ++i)
    {
        FieldContainerPtr fc = FieldContainerFactory::the()->createFieldContainer(argv[i]);
        if(fc == NullFC)
        {
            fprintf(stderr, "corvane: can't create '%s' (unknown or abstract type)\n", argv[i]);
            ++failures;
            continue;
        }
        addRefCP(fc);
        printFields(fc);
        subRefCP(fc);
    }
    return failures == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    if(argc < 2)
        return usage();
    if(!osgInit(argc, argv))
        return 1;

    int result;
    if(strcmp(argv[1], "types") == 0)
        result = listTypes();
    else if(strcmp(argv[1], "fields") == 0 && argc > 2)
        result = showFields(argc - 2, argv + 2);
    else
        result = usage();

    osgExit();
    return result;
}

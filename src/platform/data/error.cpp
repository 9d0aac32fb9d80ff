#include "data/error.h"

namespace data {

namespace {

struct StandardText {
    qint32 Number;
    const char16_t* Text;
};

constexpr StandardText standardTexts[] = {
    {ErrorInvalidArgument, u"Arguments are of the wrong type, are out of acceptable range, or are in conflict with one "
                           u"another."},
    {ErrorNoCurrentRecord, u"Either BOF or EOF is True, or the current record has been deleted. Requested operation "
                           u"requires a current record."},
    {ErrorFeatureNotAvailable, u"Current Recordset does not support updating."},
    {ErrorItemNotFound, u"Item cannot be found in the collection corresponding to the requested name or ordinal."},
    {ErrorDataConversion, u"Application uses a value of the wrong type for the current operation."},
    {ErrorObjectClosed, u"Operation is not allowed when the object is closed."},
    {ErrorObjectOpen, u"Operation is not allowed when the object is open."},
    {ErrorProviderNotFound, u"Provider cannot be found. It may not be properly installed."},
    {ErrorInvalidConnection, u"The connection cannot be used to perform this operation. It is either closed or invalid "
                             u"in this context."},
    {ErrorNoCommand, u"Command text was not set for the command object."},
    {ErrorRowNotLocated, u"Row cannot be located for updating. Some values may have been changed since it was last "
                         u"read."},
    {ErrorNotUpdatable, u"Multiple-step operation generated errors. Check each status value."},
};

QString StandardDescription(qint32 number) {
    for (const StandardText& entry : standardTexts) {
        if (entry.Number == number) {
            return QString::fromUtf16(entry.Text);
        }
    }
    return QStringLiteral("Unspecified error");
}

} // namespace

Error::Error(qint32 number) : number_(number), description_(StandardDescription(number)) {}

} // namespace data

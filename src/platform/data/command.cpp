#include "data/command.h"

#include "data/error.h"
#include "data/recordset.h"
#include "data/session.h"
#include "data/statement_text.h"

namespace data {

namespace {

// The value as it is bound, or Error where its type or size refuses it.
QVariant BoundValue(const Parameter& parameter) {
    switch (parameter.Type) {
    case adInteger: {
        bool fits = false;
        const int value = parameter.Value.toInt(&fits);
        if (!fits) {
            throw Error(ErrorDataConversion);
        }
        return value;
    }
    case adVarChar:
    case adLongVarChar: {
        const QString text = parameter.Value.toString();
        if (text.size() > parameter.Size) {
            throw Error(ErrorDataConversion);
        }
        // An empty text, not the absence of one.
        return text.isNull() ? QVariant(QStringLiteral("")) : QVariant(text);
    }
    default:
        throw Error(ErrorInvalidArgument);
    }
}

} // namespace

std::shared_ptr<Recordset> Command::Execute(int options) {
    if (!connection_) {
        throw Error(ErrorInvalidConnection);
    }
    const std::shared_ptr<Session>& session = connection_->RequireSession();
    if (type_ != adCmdText && type_ != adCmdUnspecified) {
        throw Error(ErrorInvalidArgument);
    }
    StatementText statement = TranslateStatement(text_);
    if (statement.ParameterCount > int(parameters_.size())) {
        throw Error(ErrorInCommand, QStringLiteral("No value given for one or more required parameters."));
    }
    auto parameter = parameters_.begin();
    for (QVariant& value : statement.Values) {
        if (!value.isValid()) {
            value = BoundValue(*parameter++);
        }
    }
    if (statement.Kind == StatementKind::Change) {
        session->Change(statement.Sql, statement.Values);
        return nullptr;
    }
    auto result = std::make_shared<Recordset>();
    result->OpenStatement(statement, session);
    return options != adCmdUnspecified && (options & adExecuteNoRecords) != 0 ? nullptr : result;
}

} // namespace data

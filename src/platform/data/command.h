// A statement with parameters, as ADO's Command. Values go to the store bound, never as text of the statement, and a
// value longer than its parameter's size fails the execution before anything is written.
#pragma once

#include "data/ado.h"
#include "data/connection.h"

#include <QString>
#include <QVariant>
#include <memory>
#include <vector>

namespace data {

class Recordset;

struct Parameter {
    QString Name;
    int Type = adVarChar;
    int Direction = adParamInput;
    qsizetype Size = 0; // characters; of the text types only
    QVariant Value;
};

class Command {
  public:
    void SetActiveConnection(const ConnectionPtr& connection) { connection_ = connection; }
    void SetCommandType(int type) { type_ = type; }
    // Without effect: every statement is prepared.
    void SetPrepared(bool /*prepared*/) {}
    void SetCommandText(const QString& text) { text_ = text; }

    // In the order of the marks in the text. Parameters beyond the text's marks are not used.
    void AppendParameter(const Parameter& parameter) { parameters_.push_back(parameter); }

    // Runs the statement, durable on return. Throws Error. The result of a statement that gives rows is open and stands
    // on its first row; null with adExecuteNoRecords or where there are none.
    std::shared_ptr<Recordset> Execute(int options = adCmdUnspecified);

  private:
    ConnectionPtr connection_;
    QString text_;
    std::vector<Parameter> parameters_;
    int type_ = adCmdText;
};

} // namespace data

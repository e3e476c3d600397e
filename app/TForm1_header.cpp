// The estimate's header: customer, object, contractor, number, date, title.

#include "TForm1.h"

#include "estimate/EstimateStore.h"

#include <QComboBox>

void TForm1::setupHeader() {}

QList<QPair<QString, QString>> TForm1::headerParameters() const {
    return {{DocParam::currency, QString::number(EditValuta->currentIndex())}};
}

void TForm1::applyHeaderParameters(const QMap<QString, QString> &params) {
    bool ok = false;
    const int currency = params.value(DocParam::currency).toInt(&ok);
    if (ok && currency >= 0 && currency < EditValuta->count())
        EditValuta->setCurrentIndex(currency);
}

void TForm1::writeHeaderCopies(QSqlDatabase) const {}

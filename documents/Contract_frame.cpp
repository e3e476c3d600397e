#include "Contract_frame.h"

#include "ContractAmounts.h"
#include "ContractEditor.h"
#include "ContractHtml.h"
#include "ContractPlaceholderModel.h"
#include "ContractProducer.h"
#include "ContractStore.h"
#include "Contract_Preview_frame.h"
#include "customers/CustomerRegister.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "storage/ModuleSQL.h"
#include "ui/Dialogs.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QTableView>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QVBoxLayout>

namespace {

const QString kTemplateError = QStringLiteral("Ошибка - шаблон не загружен.");
const QString kTemplateAdvice = QStringLiteral("Откройте договор во внешнем редакторе, пересохраните его \n"
                                               "с расширением .rtf и привяжите файл с новым расширением.");
const QString kCaption = QStringLiteral("Договор");

template <typename W> W *named(W *w, const char *name) {
    w->setObjectName(QLatin1String(name));
    return w;
}

QPushButton *button(QWidget *parent, const char *name, const QString &text, const QString &tip = {}) {
    auto *b = named(new QPushButton(text, parent), name);
    if (!tip.isEmpty())
        b->setToolTip(tip);
    return b;
}

} // namespace

TContract::TContract(const Context &context, QWidget *parent) : QWidget(parent), m_ctx(context) {
    setObjectName(QStringLiteral("Contract"));
    build();
    readEstimate();
}

TContract::~TContract() = default;

void TContract::build() {
    cmbFileContract = named(new QComboBox(this), "cmbFileContract");
    cmbFileContract->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cmbFileContract->setMinimumContentsLength(28);
    cmbFileContract->setToolTip(QStringLiteral("Шаблон договора: файлы .docx, .rtf и .txt папки Sh"));
    QPushButton *load = button(this, "btnLoadShablon", QStringLiteral("Загрузить шаблон…"),
                               QStringLiteral("Выбрать файл шаблона (.docx, .rtf, .txt) и открыть его"));
    QPushButton *saveTemplate = button(this, "btnSaveShablon", QStringLiteral("Сохранить шаблон…"),
                                       QStringLiteral("Сохранить текст редактора как шаблон договора"));
    ComboBoxZakaz = named(new QComboBox(this), "ComboBoxZakaz");
    ComboBoxZakaz->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    ComboBoxZakaz->setMinimumContentsLength(16);
    Edit6 = named(new QLineEdit(this), "Edit6");
    Edit6->setToolTip(QStringLiteral("Сметная стоимость"));
    Edit6->setMinimumWidth(110);
    Edit6->setMaximumWidth(160);
    SpinEditAvans = named(new QSpinBox(this), "SpinEditAvans");
    SpinEditAvans->setRange(0, 100);
    SpinEditAvans->setSuffix(QStringLiteral(" %"));
    EditAvans = named(new QLineEdit(this), "EditAvans");
    EditAvans->setToolTip(
        QStringLiteral("Аванс: сметная стоимость × процент, округлённая по правилу договора"));
    EditAvans->setMinimumWidth(90);
    EditAvans->setMaximumWidth(140);
    EditOstatok = named(new QLineEdit(this), "EditOstatok");
    EditOstatok->setToolTip(QStringLiteral("Остаток: сметная стоимость минус аванс"));
    EditOstatok->setMinimumWidth(110);
    EditOstatok->setMaximumWidth(160);
    QPushButton *create = button(this, "btnCreateContract", QStringLiteral("Составить договор"),
                                 QStringLiteral("Заполнить шаблон данными сметы, подрядчика и заказчика"));
    QPushButton *preview = button(this, "btnPreview", QStringLiteral("Предварительный просмотр"));
    QPushButton *print = button(this, "btnPrint", QStringLiteral("Печать…"));
    SpinEditCopy = named(new QSpinBox(this), "SpinEditCopy");
    SpinEditCopy->setRange(1, 99);
    SpinEditCopy->setToolTip(QStringLiteral("Число копий"));
    QPushButton *save = button(this, "btnSave", QStringLiteral("Сохранить…"),
                               QStringLiteral("Сохранить договор в формате DOCX или RTF"));
    QPushButton *pdf = button(this, "btnPDF", QStringLiteral("Экспорт в PDF…"));

    auto *fields = new QGridLayout;
    fields->addWidget(new QLabel(QStringLiteral("Шаблон:"), this), 0, 0);
    fields->addWidget(cmbFileContract, 0, 1, 1, 5);
    fields->addWidget(load, 0, 6);
    fields->addWidget(saveTemplate, 0, 7);
    fields->addWidget(new QLabel(QStringLiteral("Заказчик:"), this), 1, 0);
    fields->addWidget(ComboBoxZakaz, 1, 1);
    fields->addWidget(new QLabel(QStringLiteral("Сумма:"), this), 1, 2);
    fields->addWidget(Edit6, 1, 3);
    fields->addWidget(new QLabel(QStringLiteral("Аванс:"), this), 1, 4);
    auto *advance = new QHBoxLayout;
    advance->addWidget(SpinEditAvans);
    advance->addWidget(EditAvans);
    advance->addWidget(new QLabel(QStringLiteral("Остаток:"), this));
    advance->addWidget(EditOstatok);
    advance->addStretch(1);
    fields->addLayout(advance, 1, 5);
    fields->addWidget(create, 1, 6, 1, 2);
    fields->setColumnStretch(1, 2);
    fields->setColumnStretch(5, 1);
    auto *commands = new QHBoxLayout;
    commands->addWidget(preview);
    commands->addWidget(print);
    commands->addWidget(new QLabel(QStringLiteral("Копий:"), this));
    commands->addWidget(SpinEditCopy);
    commands->addWidget(save);
    commands->addWidget(pdf);
    commands->addStretch(1);

    m_editor = new ContractEditor(this);
    auto *side = new QWidget(this);
    side->setObjectName(QStringLiteral("PanelFields"));
    auto *sideLayout = new QVBoxLayout(side);
    sideLayout->setContentsMargins(0, 0, 0, 0);
    sideLayout->addWidget(new QLabel(QStringLiteral("Поля шаблона (двойной щелчок вставляет поле):"), side));
    auto *groups = new QHBoxLayout;
    QPushButton *all = button(side, "btnAllFields", QStringLiteral("Все"));
    QPushButton *contractor = button(side, "btnPodryadFields", QStringLiteral("Подрядчик"));
    QPushButton *customer = button(side, "btnZakazFields", QStringLiteral("Заказчик"));
    for (QPushButton *b : {all, contractor, customer}) {
        b->setCheckable(true);
        b->setAutoExclusive(true);
        groups->addWidget(b);
    }
    all->setChecked(true);
    sideLayout->addLayout(groups);
    m_fields = new ContractPlaceholderModel(this);
    m_fieldsView = named(new QTableView(side), "ListFields");
    m_fieldsView->setModel(m_fields);
    m_fieldsView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_fieldsView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_fieldsView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_fieldsView->verticalHeader()->hide();
    m_fieldsView->horizontalHeader()->setStretchLastSection(true);
    m_fieldsView->resizeColumnToContents(ContractPlaceholderModel::Text);
    sideLayout->addWidget(m_fieldsView, 1);
    auto *splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(m_editor);
    splitter->addWidget(side);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 0);
    side->setMinimumWidth(260);
    side->setMaximumWidth(420);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addLayout(commands);
    layout->addWidget(splitter, 1);

    m_preview = new TContract_Preview(this);

    connect(load, &QPushButton::clicked, this, &TContract::btnLoadShablonClick);
    connect(saveTemplate, &QPushButton::clicked, this, &TContract::btnSaveShablonClick);
    connect(create, &QPushButton::clicked, this, &TContract::CreateContract);
    connect(preview, &QPushButton::clicked, this, &TContract::btnPreviewClick);
    connect(print, &QPushButton::clicked, this, &TContract::btnPrintClick);
    connect(save, &QPushButton::clicked, this, &TContract::btnSaveClick);
    connect(pdf, &QPushButton::clicked, this, &TContract::btnPDFClick);
    connect(Edit6, &QLineEdit::textChanged, this, &TContract::Edit6Change);
    connect(EditAvans, &QLineEdit::textChanged, this, &TContract::EditAvansChange);
    connect(SpinEditAvans, &QSpinBox::valueChanged, this, &TContract::SpinEditAvansChange);
    connect(cmbFileContract, &QComboBox::activated, this, &TContract::templateChosen);
    connect(all, &QPushButton::clicked, this, [this] { showParty(0); });
    connect(contractor, &QPushButton::clicked, this, [this] { showParty(1); });
    connect(customer, &QPushButton::clicked, this, [this] { showParty(2); });
    connect(m_fieldsView, &QTableView::doubleClicked, this, &TContract::insertPlaceholder);
    connect(m_editor->edit()->document(), &QTextDocument::contentsChanged, this, [this] {
        if (!m_busy)
            m_unsaved = m_unsaved || m_editor->isModified();
    });
    connect(m_editor, &ContractEditor::editedChanged, this,
            [this](bool edited) { m_unsaved = m_unsaved || edited; });
}

// ----- Fields

void TContract::readEstimate() {
    EstimateDocument *doc = m_ctx.document;
    m_templatePath = ContractProducer::templatePath(m_ctx.store, m_ctx.dataFolder);
    fillTemplateList();
    SpinEditAvans->blockSignals(true);
    SpinEditAvans->setValue(ContractProducer::advancePercent(m_ctx.store));
    SpinEditAvans->blockSignals(false);
    const QString customer = doc ? doc->header().customer : QString();
    QStringList customers = m_ctx.module ? CustomerRegister(*m_ctx.module).customers() : QStringList();
    if (!customer.isEmpty() && !customers.contains(customer))
        customers.prepend(customer);
    ComboBoxZakaz->clear();
    ComboBoxZakaz->addItems(customers);
    ComboBoxZakaz->setCurrentIndex(customers.indexOf(customer));
    // The total as the main window shows it; the advance and the remainder follow.
    Edit6->setText(doc ? doc->editor().grandTotal().text() : QString());
    Edit6Change();
}

void TContract::Edit6Change() {
    EditAvans->setText(ContractAmounts::advanceText(Edit6->text(), SpinEditAvans->value()));
    EditAvansChange();
}

void TContract::EditAvansChange() {
    EditOstatok->setText(ContractAmounts::remainderText(Edit6->text(), EditAvans->text()));
}

void TContract::SpinEditAvansChange(int percent) {
    ContractProducer::setAdvancePercent(m_ctx.store, percent);
    Edit6Change();
}

ContractFill::Data TContract::contractData() const {
    ContractFill::Data d;
    if (m_ctx.document)
        d = ContractProducer::dataFrom(*m_ctx.document, SpinEditAvans->value());
    // What the user set on the page overrides what the estimate gives.
    d.total = Edit6->text();
    d.advance = EditAvans->text();
    d.remainder = EditOstatok->text();
    const QString customer = ComboBoxZakaz->currentText();
    if (!m_ctx.document || customer != m_ctx.document->header().customer)
        d.customer = m_ctx.module && !customer.isEmpty() ? CustomerRegister(*m_ctx.module).customer(customer)
                                                         : CustomerData{};
    return d;
}

void TContract::showParty(int which) {
    using P = ContractFill::Party;
    m_fields->showParty(which == 1   ? std::optional<P>(P::Contractor)
                        : which == 2 ? std::optional<P>(P::Customer)
                                     : std::nullopt);
}

void TContract::insertPlaceholder(const QModelIndex &index) {
    const QString text = m_fields->placeholder(index.row());
    if (!text.isEmpty())
        m_editor->insertText(text);
}

// ----- Templates

void TContract::fillTemplateList() {
    cmbFileContract->clear();
    const QDir sh(QDir(m_ctx.dataFolder).filePath(QStringLiteral("Sh")));
    const QStringList names =
        sh.entryList({QStringLiteral("*.docx"), QStringLiteral("*.rtf"), QStringLiteral("*.txt")},
                     QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QString &name : names)
        cmbFileContract->addItem(name, sh.filePath(name));
    int current = cmbFileContract->findData(m_templatePath);
    if (current < 0 && !m_templatePath.isEmpty()) {
        cmbFileContract->addItem(QDir::toNativeSeparators(m_templatePath), m_templatePath);
        current = cmbFileContract->count() - 1;
    }
    cmbFileContract->setCurrentIndex(current);
}

void TContract::setTemplate(const QString &path) {
    m_templatePath = path;
    ContractProducer::setTemplatePath(m_ctx.store, path);
    fillTemplateList();
}

void TContract::templateChosen(int index) {
    const QString path = cmbFileContract->itemData(index).toString();
    if (!path.isEmpty() && path != m_templatePath)
        loadTemplate(path);
}

void TContract::templateNotLoaded(const QString &why) {
    m_editor->clearContent();
    m_base.clear();
    m_unsaved = false;
    if (m_ctx.status && !why.isEmpty())
        m_ctx.status(why);
    dialogs().tell(kTemplateError, kTemplateAdvice, Dialogs::Icon::Error);
    fillTemplateList(); // the list shows the template in force again
}

void TContract::btnLoadShablonClick() {
    const QString folder = QFileInfo(m_templatePath).absolutePath();
    const QString path =
        dialogs().openFile(QStringLiteral("Загрузить шаблон договора"), folder,
                           QStringLiteral("Шаблоны договора (*.docx *.rtf *.txt);;Все файлы (*)"));
    if (!path.isEmpty())
        loadTemplate(path);
}

void TContract::loadTemplate(const QString &path) {
    if (m_busy)
        return;
    // Hostile and damaged files are refused here, before the engine sees them.
    const QString why = TemplateFile::check(path);
    if (!why.isEmpty()) {
        templateNotLoaded(why);
        emit jobFinished(false, QString());
        return;
    }
    auto html = std::make_shared<QString>();
    runJob(
        QStringLiteral("Загрузка шаблона…"),
        [path, html](OfficeEngine &engine, QString *error) {
            return ContractFile::readBody(engine, path, html.get(), error);
        },
        [this, path, html](bool ok, const QString &error) {
            if (!ok) {
                templateNotLoaded(error);
                emit jobFinished(false, QString());
                return;
            }
            showBody(*html, path, true);
            setTemplate(path);
            emit jobFinished(true, QString());
        });
}

void TContract::btnSaveShablonClick() {
    if (m_busy || m_base.isEmpty())
        return;
    const QString suggested =
        m_baseIsTemplate
            ? m_base
            : QDir(QFileInfo(m_templatePath).absolutePath()).filePath(QStringLiteral("Шаблон договора.docx"));
    QString path = dialogs().saveFile(QStringLiteral("Сохранить шаблон договора"),
                                      QFileInfo(suggested).absolutePath(), QFileInfo(suggested).fileName(),
                                      QStringLiteral("Документ Word (*.docx);;Документ RTF (*.rtf)"),
                                      QStringLiteral("docx"));
    if (path.isEmpty())
        return;
    if (TemplateFile::formatFor(path) != QLatin1String("rtf") &&
        TemplateFile::formatFor(path) != QLatin1String("docx"))
        path += QStringLiteral(".docx");
    const QString base = m_base;
    const ContractFile::Edits changes = edits();
    runJob(
        QStringLiteral("Сохранение шаблона…"),
        [base, changes, path](OfficeEngine &engine, QString *error) {
            return ContractFile::write(engine, base, changes, {{path, QString()}}, error);
        },
        [this, path](bool ok, const QString &error) {
            if (!ok) {
                failed(error);
                return;
            }
            // The saved file is now the template the editor shows.
            m_base = path;
            m_baseIsTemplate = true;
            m_editor->edit()->document()->setModified(false);
            m_editor->setPage(m_editor->page());
            m_unsaved = false;
            setTemplate(path);
            if (m_ctx.status)
                m_ctx.status(
                    QStringLiteral("Шаблон договора сохранён: %1").arg(QDir::toNativeSeparators(path)));
            emit jobFinished(true, path);
        });
}

// ----- The contract

ContractFile::Edits TContract::edits() const {
    ContractFile::Edits e;
    e.body = m_editor->isModified();
    if (e.body)
        e.html = ContractHtml::forEngine(*m_editor->edit()->document());
    e.page = m_editor->pageEdited();
    e.pageSetup = m_editor->page();
    return e;
}

bool TContract::hasUnsavedEdits() const {
    return m_unsaved && (m_editor->isModified() || m_editor->pageEdited());
}

QString TContract::scratch(const QString &name) {
    if (!m_scratch) {
        const QString temp = QDir(m_ctx.dataFolder).filePath(QStringLiteral("Temp"));
        QDir().mkpath(temp);
        m_scratch = std::make_unique<QTemporaryDir>(QDir(temp).filePath(QStringLiteral("Договор-XXXXXX")));
    }
    return m_scratch->filePath(name.arg(++m_serial));
}

void TContract::CreateContract() {
    if (m_busy)
        return;
    if (showsContract() && hasUnsavedEdits() &&
        dialogs().ask(kCaption, QStringLiteral("Договор изменён. Составить его заново по шаблону? Правки в "
                                               "тексте будут потеряны.")) != Dialogs::Answer::Yes)
        return;
    const QString templ = m_templatePath;
    const QString why = TemplateFile::check(templ);
    if (!why.isEmpty()) {
        templateNotLoaded(why);
        emit jobFinished(false, QString());
        return;
    }
    // A template edited in the window is filled as it stands in the window.
    ContractFile::Edits templateEdits;
    if (m_baseIsTemplate && m_base == templ)
        templateEdits = edits();
    const WordTemplate::Replacements replacements = ContractFill::replacements(contractData());
    const QString out = scratch(QStringLiteral("Договор-%1.docx"));
    const QString edited = scratch(QStringLiteral("Шаблон-%1.docx"));
    auto html = std::make_shared<QString>();
    auto notLoaded = std::make_shared<bool>(false);
    runJob(
        QStringLiteral("Составление договора…"),
        [templ, templateEdits, edited, replacements, out, html, notLoaded](OfficeEngine &engine,
                                                                           QString *error) {
            QString source = templ;
            if (templateEdits.any()) {
                if (!ContractFile::write(engine, templ, templateEdits, {{edited, QStringLiteral("docx")}},
                                         error))
                    return false;
                source = edited;
            }
            return ContractFile::fill(engine, source, replacements, {{out, QStringLiteral("docx")}}, error,
                                      notLoaded.get()) &&
                   ContractFile::readBody(engine, out, html.get(), error);
        },
        [this, out, html, notLoaded](bool ok, const QString &error) {
            if (!ok) {
                if (*notLoaded) {
                    templateNotLoaded(error);
                    emit jobFinished(false, QString());
                } else {
                    failed(error);
                }
                return;
            }
            showBody(*html, out, false);
            emit jobFinished(true, QString());
        });
}

void TContract::saveAs(const QString &path, const QString &format, bool pdf) {
    const QString base = m_base;
    const ContractFile::Edits changes = edits();
    runJob(
        QStringLiteral("Сохранение договора…"),
        [base, changes, path, format](OfficeEngine &engine, QString *error) {
            return ContractFile::write(engine, base, changes, {{path, format}}, error);
        },
        [this, path, pdf](bool ok, const QString &error) {
            if (!ok) {
                failed(error);
                return;
            }
            m_unsaved = false;
            QString note = QStringLiteral("Договор сохранён: %1").arg(QDir::toNativeSeparators(path));
            // The register lists the contract under the estimate it was made from.
            const QString iddoc =
                m_ctx.module ? ContractStore::estimateId(m_ctx.module->database(Db::Smeta)) : QString();
            if (iddoc.isEmpty()) {
                note += QStringLiteral(" (смета не внесена в реестр документов, договор в нём не отмечен)");
            } else if (m_ctx.document) {
                ContractStore::Entry e;
                e.iddoc = iddoc;
                e.date = m_ctx.document->header().date;
                e.number = m_ctx.document->numberText();
                e.fileName = path;
                e.ext = pdf ? ContractStore::kPdf : ContractStore::kDoc;
                e.avans = EditAvans->text();
                const MoneyResult total = Money::parse(Edit6->text());
                e.allsum = total ? total->text() : Edit6->text();
                QString problem;
                if (!ContractStore::registerFile(m_ctx.module->database(Db::MyDoc), e, &problem))
                    dialogs().tell(Captions::warning, problem, Dialogs::Icon::Warning);
            }
            if (m_ctx.status)
                m_ctx.status(note);
            emit jobFinished(true, path);
        });
}

void TContract::btnSaveClick() {
    if (m_busy || m_base.isEmpty())
        return;
    const EstimateDocument *doc = m_ctx.document;
    const QString name =
        ContractProducer::fileName(doc ? doc->numberText() : QString(), doc ? doc->header().date : QDate(),
                                   ContractProducer::Format::Docx);
    QString path = dialogs().saveFile(QStringLiteral("Сохранить договор"), doc ? doc->folder() : QString(),
                                      name, QStringLiteral("Документ Word (*.docx);;Документ RTF (*.rtf)"),
                                      QStringLiteral("docx"));
    if (path.isEmpty())
        return;
    QString format = TemplateFile::formatFor(path);
    if (format != QLatin1String("rtf") && format != QLatin1String("docx")) {
        path += QStringLiteral(".docx");
        format = QStringLiteral("docx");
    }
    saveAs(path, format, false);
}

void TContract::btnPDFClick() {
    if (m_busy || m_base.isEmpty())
        return;
    const EstimateDocument *doc = m_ctx.document;
    const QString name =
        ContractProducer::fileName(doc ? doc->numberText() : QString(), doc ? doc->header().date : QDate(),
                                   ContractProducer::Format::Pdf);
    QString path = dialogs().saveFile(QStringLiteral("Экспорт в формат PDF"), doc ? doc->folder() : QString(),
                                      name, QStringLiteral("Документ PDF (*.pdf)"), QStringLiteral("pdf"));
    if (path.isEmpty())
        return;
    if (TemplateFile::formatFor(path) != QLatin1String("pdf"))
        path += QStringLiteral(".pdf");
    saveAs(path, QStringLiteral("pdf"), true);
}

void TContract::btnPreviewClick() {
    if (m_busy || m_base.isEmpty())
        return;
    const QString pdf = scratch(QStringLiteral("Просмотр-%1.pdf"));
    const QString docx = pdf.chopped(4) + QStringLiteral(".docx");
    const QString base = m_base;
    const ContractFile::Edits changes = edits();
    runJob(
        QStringLiteral("Подготовка просмотра…"),
        [base, changes, pdf, docx](OfficeEngine &engine, QString *error) {
            return ContractFile::write(engine, base, changes,
                                       {{pdf, QStringLiteral("pdf")}, {docx, QStringLiteral("docx")}}, error);
        },
        [this, pdf, docx](bool ok, const QString &error) {
            QString problem = error;
            const EstimateDocument *doc = m_ctx.document;
            const QString title =
                ContractProducer::fileName(doc ? doc->numberText() : QString(),
                                           doc ? doc->header().date : QDate(), ContractProducer::Format::Docx)
                    .chopped(5);
            if (ok && !m_preview->showDocument(pdf, title, {docx}, &problem))
                ok = false;
            if (!ok) {
                failed(problem);
                return;
            }
            m_preview->setSaveFolder(doc ? doc->folder() : QString());
            m_preview->show();
            m_preview->raise();
            m_preview->activateWindow();
            emit jobFinished(true, QString());
        });
}

void TContract::btnPrintClick() {
    if (m_busy || m_base.isEmpty())
        return;
    const QString pdf = scratch(QStringLiteral("Печать-%1.pdf"));
    const QString base = m_base;
    const ContractFile::Edits changes = edits();
    runJob(
        QStringLiteral("Подготовка к печати…"),
        [base, changes, pdf](OfficeEngine &engine, QString *error) {
            return ContractFile::write(engine, base, changes, {{pdf, QStringLiteral("pdf")}}, error);
        },
        [this, pdf](bool ok, const QString &error) {
            QString problem = error;
            if (ok && !m_preview->showDocument(pdf, kCaption, {}, &problem))
                ok = false;
            if (!ok) {
                failed(problem);
                return;
            }
            m_preview->setCopies(SpinEditCopy->value());
            emit jobFinished(true, QString());
            m_preview->spdPrintClick();
        });
}

void TContract::showBody(const QString &engineHtml, const QString &path, bool isTemplate) {
    m_editor->setContent(ContractHtml::forEditor(engineHtml));
    m_editor->setPage(ContractFile::pageOf(path).page);
    m_base = path;
    m_baseIsTemplate = isTemplate;
    m_unsaved = false;
}

void TContract::failed(const QString &error) {
    dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
    emit jobFinished(false, QString());
}

// ----- The engine's jobs

void TContract::runJob(const QString &what, Job job, std::function<void(bool, const QString &)> done) {
    if (!m_ctx.office) {
        done(false, QStringLiteral("Офисный модуль недоступен."));
        return;
    }
    QString why;
    if (!OfficeEngine::available(&why)) {
        done(false, why);
        return;
    }
    m_busy = true;
    setEnabled(false);
    auto *progress = new QProgressDialog(what, QString(), 0, 0, this);
    progress->setWindowTitle(kCaption);
    progress->setWindowModality(Qt::WindowModal);
    progress->setMinimumDuration(400);
    auto *watcher = new QFutureWatcher<OfficeService::Result>(this);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::finished, this, [this, watcher, progress, done] {
        const OfficeService::Result r = watcher->result();
        watcher->deleteLater();
        progress->close();
        progress->deleteLater();
        m_busy = false;
        setEnabled(true);
        done(r.ok, r.error);
    });
    watcher->setFuture(
        m_ctx.office->run([job](OfficeEngine &engine, QString *error, const std::function<void(int)> &) {
            return job(engine, error);
        }));
}

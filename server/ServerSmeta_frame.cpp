#include "ServerSmeta_frame.h"

#include "ServerFileKinds.h"
#include "ServerFileModel.h"
#include "ServerFiles.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStandardItemModel>
#include <QStyle>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace {

constexpr int kPreviewWidth = 250;
constexpr int kAddressRole = Qt::UserRole + 1;
constexpr int kKindRole = Qt::UserRole + 2;
const QString kNoConnection = QStringLiteral("Отсутствует подключение к интернету");
const QString kConnecting = QStringLiteral("Подключение к серверу…");

QString shown(const QString &stored) {
    return TextValues::nameFromStored(stored);
}

} // namespace

TServerSmeta::TServerSmeta(ServerFiles *files, TModuleSQL *module, QWidget *parent)
    : QWidget(parent, Qt::Window), m_files(files), m_module(module), m_model(new ServerFileModel(this)),
      m_addresses(new QStandardItemModel(this)), m_kinds(new QStandardItemModel(this)),
      m_progressTimer(new QTimer(this)) {
    setObjectName(QStringLiteral("ServerSmeta"));
    setWindowTitle(QStringLiteral("Файлы на сервере"));
    resize(1180, 640);
    build();
    connect(m_files, &ServerFiles::listed, this, &TServerSmeta::showLists);
    connect(m_files, &ServerFiles::listFailed, this, [this](const QString &message) {
        LabelStatus->setText(message);
        dialogs().tell(Captions::error, message, Dialogs::Icon::Error);
    });
    connect(m_files, &ServerFiles::finished, this, &TServerSmeta::onFinished);
    connect(m_files, &ServerFiles::previewReady, this,
            [this](const StoredFile &row, const QImage &image, const QString &problem) {
                const StoredFile *current = selectedFile();
                if (!current || current->name != row.name || current->data != row.data)
                    return;
                if (image.isNull()) {
                    WebBrowser1->setPixmap(QPixmap());
                    WebBrowser1->setText(problem);
                } else {
                    WebBrowser1->setText(QString());
                    WebBrowser1->setPixmap(QPixmap::fromImage(image));
                }
                emit previewShown(!image.isNull());
            });
    m_progressTimer->setInterval(200);
    connect(m_progressTimer, &QTimer::timeout, this, &TServerSmeta::updateProgress);
    updateActions();
}

TServerSmeta::~TServerSmeta() {
    m_files->cancel();
}

void TServerSmeta::build() {
    auto *layout = new QVBoxLayout(this);
    ToolBar1 = new QToolBar(this);
    ToolBar1->setObjectName(QStringLiteral("ToolBar1"));
    ToolBar1->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    auto action = [this](const char *name, const QString &text, QStyle::StandardPixmap icon) {
        auto *a = new QAction(style()->standardIcon(icon), text, this);
        a->setObjectName(QLatin1String(name));
        a->setToolTip(text);
        return a;
    };
    spdDropTable = action("spdDropTable", QStringLiteral("Удалить все файлы на сервере"),
                          QStyle::SP_DialogDiscardButton);
    spdFirst = action("spdFirst", QStringLiteral("Первая запись"), QStyle::SP_MediaSkipBackward);
    spdLast = action("spdLast", QStringLiteral("Последняя запись"), QStyle::SP_MediaSkipForward);
    spdDeleteFile = action("spdDeleteFile", QStringLiteral("Удалить файл"), QStyle::SP_TrashIcon);
    spdLoadServer =
        action("spdLoadServer", QStringLiteral("Загрузить файл в компьютер"), QStyle::SP_ArrowDown);
    spdSaveFileServer =
        action("spdSaveFileServer", QStringLiteral("Сохранить файл на сервере"), QStyle::SP_ArrowUp);
    spdRefresh = action("spdRefresh", QStringLiteral("Обновить"), QStyle::SP_BrowserReload);
    spdDeleteFile->setShortcut(QKeySequence::Delete);
    spdDeleteFile->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    spdRefresh->setShortcut(QKeySequence::Refresh);
    spdRefresh->setShortcutContext(Qt::WindowShortcut);
    spdFirst->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Home));
    spdLast->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_End));
    for (QAction *a : {spdFirst, spdLast})
        a->setShortcutContext(Qt::WindowShortcut);
    ToolBar1->addAction(spdDropTable);
    ToolBar1->addSeparator();
    ToolBar1->addAction(spdFirst);
    ToolBar1->addAction(spdLast);
    ToolBar1->addSeparator();
    ToolBar1->addAction(spdDeleteFile);
    ToolBar1->addAction(spdLoadServer);
    ToolBar1->addAction(spdSaveFileServer);
    ToolBar1->addSeparator();
    ToolBar1->addAction(spdRefresh);
    // Moving to a row and reading again need no words beside their pictures.
    for (QAction *a : {spdFirst, spdLast, spdRefresh})
        if (auto *button = qobject_cast<QToolButton *>(ToolBar1->widgetForAction(a)))
            button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    layout->addWidget(ToolBar1);
    connect(spdDropTable, &QAction::triggered, this, &TServerSmeta::spdDropTableClick);
    connect(spdFirst, &QAction::triggered, this, &TServerSmeta::spdFirstClick);
    connect(spdLast, &QAction::triggered, this, &TServerSmeta::spdLastClick);
    connect(spdDeleteFile, &QAction::triggered, this, &TServerSmeta::spdDeleteFileClick);
    connect(spdLoadServer, &QAction::triggered, this, &TServerSmeta::spdLoadServerClick);
    connect(spdSaveFileServer, &QAction::triggered, this, &TServerSmeta::spdSaveFileServerClick);
    connect(spdRefresh, &QAction::triggered, this, &TServerSmeta::readLists);

    // The address new uploads get.
    auto *addressRow = new QHBoxLayout;
    auto *addressCaption = new QLabel(QStringLiteral("Адрес объекта для загрузки:"), this);
    EditAddress = new QComboBox(this);
    EditAddress->setObjectName(QStringLiteral("EditAddress"));
    EditAddress->setEditable(true);
    EditAddress->setInsertPolicy(QComboBox::NoInsert);
    EditAddress->setMinimumWidth(360);
    addressCaption->setBuddy(EditAddress);
    addressRow->addWidget(addressCaption);
    addressRow->addWidget(EditAddress, 1);
    layout->addLayout(addressRow);

    auto *split = new QSplitter(Qt::Horizontal, this);
    // Left: addresses and kinds.
    auto *left = new QWidget(split);
    auto *leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    TreeView1 = new QTreeView(left);
    TreeView1->setObjectName(QStringLiteral("TreeView1"));
    TreeView1->setModel(m_addresses);
    TreeView1->setHeaderHidden(true);
    TreeView1->setRootIsDecorated(false);
    TreeView1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    TreeView2 = new QTreeView(left);
    TreeView2->setObjectName(QStringLiteral("TreeView2"));
    TreeView2->setModel(m_kinds);
    TreeView2->setHeaderHidden(true);
    TreeView2->setRootIsDecorated(false);
    TreeView2->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // One picture per kind, the same in the kinds tree and beside each file of the grid.
    QList<QIcon> kindIcons;
    const QStyle::StandardPixmap pixmaps[] = {QStyle::SP_FileDialogDetailedView,
                                              QStyle::SP_FileDialogListView,
                                              QStyle::SP_FileDialogContentsView,
                                              QStyle::SP_FileIcon,
                                              QStyle::SP_DirClosedIcon,
                                              QStyle::SP_DriveHDIcon,
                                              QStyle::SP_DesktopIcon,
                                              QStyle::SP_ComputerIcon};
    for (QStyle::StandardPixmap p : pixmaps)
        kindIcons << style()->standardIcon(p);
    const QList<FileKind> &kinds = ServerFileKinds::all();
    for (int i = 0; i < kinds.size(); ++i) {
        auto *item = new QStandardItem(kindIcons.value(i), kinds[i].caption);
        item->setData(i, kKindRole);
        item->setToolTip(kinds[i].extensions.join(QStringLiteral(", ")));
        m_kinds->appendRow(item);
    }
    ButtonAllFiles = new QPushButton(QStringLiteral("Все файлы"), left);
    ButtonAllFiles->setObjectName(QStringLiteral("ButtonAllFiles"));
    leftLayout->addWidget(new QLabel(QStringLiteral("Адреса объектов"), left));
    leftLayout->addWidget(TreeView1, 3);
    leftLayout->addWidget(new QLabel(QStringLiteral("Виды файлов"), left));
    leftLayout->addWidget(TreeView2, 2);
    leftLayout->addWidget(ButtonAllFiles);
    connect(TreeView1->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &TServerSmeta::TreeView1Change);
    connect(TreeView2->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &TServerSmeta::TreeView2Change);
    connect(ButtonAllFiles, &QPushButton::clicked, this, &TServerSmeta::ButtonAllFilesClick);

    // Centre: the labels and the grid.
    auto *centre = new QWidget(split);
    auto *centreLayout = new QVBoxLayout(centre);
    centreLayout->setContentsMargins(0, 0, 0, 0);
    LabelAddress = new QLabel(centre);
    LabelAddress->setObjectName(QStringLiteral("LabelAddress"));
    LabelKind = new QLabel(centre);
    LabelKind->setObjectName(QStringLiteral("LabelKind"));
    AdvStringGrid1 = new QTableView(centre);
    AdvStringGrid1->setObjectName(QStringLiteral("AdvStringGrid1"));
    AdvStringGrid1->setModel(m_model);
    AdvStringGrid1->setSelectionBehavior(QAbstractItemView::SelectRows);
    AdvStringGrid1->setSelectionMode(QAbstractItemView::SingleSelection);
    AdvStringGrid1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    AdvStringGrid1->verticalHeader()->hide();
    AdvStringGrid1->verticalHeader()->setDefaultSectionSize(AdvStringGrid1->fontMetrics().height() + 8);
    AdvStringGrid1->setWordWrap(false);
    AdvStringGrid1->horizontalHeader()->setStretchLastSection(true);
    AdvStringGrid1->setColumnWidth(ServerFileModel::Data, 140);
    AdvStringGrid1->setColumnWidth(ServerFileModel::Name, 240);
    AdvStringGrid1->setColumnWidth(ServerFileModel::Type, 50);
    AdvStringGrid1->setContextMenuPolicy(Qt::CustomContextMenu);
    AdvStringGrid1->addAction(spdDeleteFile);
    auto *popup = new QMenu(this);
    popup->setObjectName(QStringLiteral("PopupMenu1"));
    popup->addAction(spdLoadServer);
    popup->addAction(spdDeleteFile);
    connect(AdvStringGrid1, &QWidget::customContextMenuRequested, this,
            [this, popup](const QPoint &at) { popup->popup(AdvStringGrid1->viewport()->mapToGlobal(at)); });
    connect(AdvStringGrid1, &QAbstractItemView::activated, this, [this] { spdLoadServerClick(); });
    connect(AdvStringGrid1->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &TServerSmeta::AdvStringGrid1SelectCell);
    connect(m_model, &QAbstractItemModel::modelReset, this, &TServerSmeta::AdvStringGrid1SelectCell);
    m_model->setIcons(kindIcons, style()->standardIcon(QStyle::SP_FileIcon));
    centreLayout->addWidget(LabelAddress);
    centreLayout->addWidget(LabelKind);
    centreLayout->addWidget(AdvStringGrid1, 1);

    // Right: the picture.
    WebBrowser1 = new QLabel(split);
    WebBrowser1->setObjectName(QStringLiteral("WebBrowser1"));
    WebBrowser1->setFixedWidth(kPreviewWidth + 12);
    WebBrowser1->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    WebBrowser1->setWordWrap(true);
    WebBrowser1->setFrameShape(QFrame::StyledPanel);
    WebBrowser1->setMargin(6);

    split->addWidget(left);
    split->addWidget(centre);
    split->addWidget(WebBrowser1);
    split->setStretchFactor(1, 1);
    split->setSizes({240, 600, kPreviewWidth + 12});
    layout->addWidget(split, 1);

    // Bottom: the transfer under way, the last result, "Закрыть".
    auto *bottom = new QHBoxLayout;
    m_transferBar = new QWidget(this);
    auto *transfer = new QHBoxLayout(m_transferBar);
    transfer->setContentsMargins(0, 0, 0, 0);
    m_transferText = new QLabel(m_transferBar);
    ProgressTransfer = new QProgressBar(m_transferBar);
    ProgressTransfer->setObjectName(QStringLiteral("ProgressTransfer"));
    ProgressTransfer->setMinimumWidth(240);
    ButtonCancel = new QPushButton(QStringLiteral("Отмена"), m_transferBar);
    ButtonCancel->setObjectName(QStringLiteral("ButtonCancel"));
    transfer->addWidget(m_transferText);
    transfer->addWidget(ProgressTransfer);
    transfer->addWidget(ButtonCancel);
    m_transferBar->hide();
    LabelStatus = new QLabel(this);
    LabelStatus->setObjectName(QStringLiteral("LabelStatus"));
    LabelStatus->setWordWrap(true);
    ButtonClose = new QPushButton(QStringLiteral("Закрыть"), this);
    ButtonClose->setObjectName(QStringLiteral("ButtonClose"));
    bottom->addWidget(m_transferBar);
    bottom->addWidget(LabelStatus, 1);
    bottom->addWidget(ButtonClose);
    layout->addLayout(bottom);
    connect(ButtonCancel, &QPushButton::clicked, m_files, &ServerFiles::cancel);
    connect(ButtonClose, &QPushButton::clicked, this, &QWidget::close);
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setSingleShot(true);
    Timer1->setInterval(300);
    connect(Timer1, &QTimer::timeout, this, &TServerSmeta::Timer1Timer);
    LabelAddress->setText(QStringLiteral("Адрес: все"));
    LabelKind->setText(QStringLiteral("Файлы: все"));
}

void TServerSmeta::setDefaultAddress(const QString &address) {
    m_defaultAddress = address.trimmed();
    EditAddress->setEditText(m_defaultAddress);
}

const StoredFile *TServerSmeta::selectedFile() const {
    const QModelIndex i = AdvStringGrid1->currentIndex();
    if (!i.isValid() || !AdvStringGrid1->selectionModel()->isRowSelected(i.row(), {}))
        return nullptr;
    return &m_model->file(i.row());
}

bool TServerSmeta::busy() const {
    return m_operation != Operation::None;
}

void TServerSmeta::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    if (!event->spontaneous())
        Timer1->start();
}

void TServerSmeta::hideEvent(QHideEvent *event) {
    QWidget::hideEvent(event);
    if (event->spontaneous())
        return;
    Timer1->stop();
    // The connection stays open while the window is shown.
    if (!busy())
        m_files->disconnectStore();
}

void TServerSmeta::closeEvent(QCloseEvent *event) {
    if (busy()) {
        if (dialogs().ask(Captions::warning, QStringLiteral("Передача файла ещё идёт. Прервать её?"),
                          Dialogs::Buttons::YesNo, Dialogs::Icon::Question) != Dialogs::Answer::Yes) {
            event->ignore();
            return;
        }
        m_files->cancel();
    }
    event->accept();
}

void TServerSmeta::Timer1Timer() {
    Timer1->stop();
    if (const QString p = m_files->problem(); !p.isEmpty()) {
        LabelStatus->setText(p);
        dialogs().tell(Captions::warning, p, Dialogs::Icon::Warning);
        return;
    }
    if (!m_files->connectionPresent()) {
        LabelStatus->setText(kNoConnection);
        dialogs().tell(Captions::warning, kNoConnection, Dialogs::Icon::Warning);
        return;
    }
    LabelStatus->setText(kConnecting);
    readLists();
}

void TServerSmeta::readLists() {
    if (!m_files->problem().isEmpty())
        return;
    if (const StoredFile *f = selectedFile())
        m_keepSelected = *f;
    FileFilter filter;
    const QModelIndex address = TreeView1->currentIndex();
    if (address.isValid() && address.data(kAddressRole).isValid()) {
        filter.byAddress = true;
        filter.address = address.data(kAddressRole).toString();
    }
    const QModelIndex kind = TreeView2->currentIndex();
    if (kind.isValid() && TreeView2->selectionModel()->isSelected(kind))
        filter.types = ServerFileKinds::all().value(kind.data(kKindRole).toInt()).extensions;
    m_files->read(filter);
}

void TServerSmeta::showLists(const QStringList &addresses, const QList<StoredFile> &files) {
    // The address tree: "Все адреса", then each address once; the chosen one stays chosen.
    const QModelIndex current = TreeView1->currentIndex();
    const QVariant chosen = current.isValid() ? current.data(kAddressRole) : QVariant();
    {
        const QSignalBlocker block(TreeView1->selectionModel());
        m_addresses->clear();
        auto *all = new QStandardItem(QStringLiteral("Все адреса"));
        m_addresses->appendRow(all);
        int keep = 0;
        for (const QString &a : addresses) {
            auto *item = new QStandardItem(a.isEmpty() ? QStringLiteral("(без адреса)") : shown(a));
            item->setData(a, kAddressRole);
            item->setToolTip(shown(a));
            m_addresses->appendRow(item);
            if (chosen.isValid() && chosen.toString() == a)
                keep = m_addresses->rowCount() - 1;
        }
        TreeView1->setCurrentIndex(m_addresses->index(keep, 0));
    }
    // The upload address box offers the known addresses and keeps what is typed.
    const QString typed = EditAddress->currentText();
    EditAddress->clear();
    QStringList offered;
    if (!m_defaultAddress.isEmpty())
        offered << m_defaultAddress;
    for (const QString &a : addresses)
        if (!a.isEmpty() && !offered.contains(shown(a)))
            offered << shown(a);
    EditAddress->addItems(offered);
    EditAddress->setEditText(typed.isEmpty() ? m_defaultAddress : typed);

    m_model->setFiles(files);
    if (LabelStatus->text() == kConnecting)
        LabelStatus->clear();
    const int again = m_model->rowOf(m_keepSelected.name, m_keepSelected.data);
    if (again >= 0)
        selectRow(again);
    m_keepSelected = StoredFile();
    updateActions();
    emit listsRead();
}

void TServerSmeta::TreeView1Change() {
    const QModelIndex i = TreeView1->currentIndex();
    const QVariant address = i.isValid() ? i.data(kAddressRole) : QVariant();
    LabelAddress->setText(QStringLiteral("Адрес: ") +
                          (address.isValid() ? shown(address.toString()) : QStringLiteral("все")));
    if (address.isValid() && !address.toString().isEmpty())
        EditAddress->setEditText(shown(address.toString()));
    readLists();
}

void TServerSmeta::TreeView2Change() {
    const QModelIndex i = TreeView2->currentIndex();
    LabelKind->setText(QStringLiteral("Файлы: ") +
                       (i.isValid() ? i.data().toString() : QStringLiteral("все")));
    readLists();
}

void TServerSmeta::ButtonAllFilesClick() {
    {
        const QSignalBlocker block(TreeView2->selectionModel());
        TreeView2->selectionModel()->clear();
        TreeView2->setCurrentIndex(QModelIndex());
    }
    LabelKind->setText(QStringLiteral("Файлы: все"));
    readLists();
}

void TServerSmeta::selectRow(int row) {
    if (row < 0 || row >= m_model->rowCount())
        return;
    AdvStringGrid1->setCurrentIndex(m_model->index(row, ServerFileModel::Name));
    AdvStringGrid1->selectRow(row);
    AdvStringGrid1->scrollTo(m_model->index(row, 0));
}

void TServerSmeta::spdFirstClick() {
    selectRow(0);
}

void TServerSmeta::spdLastClick() {
    selectRow(m_model->rowCount() - 1);
}

void TServerSmeta::AdvStringGrid1SelectCell() {
    const StoredFile *f = selectedFile();
    updateActions();
    if (!f || !ServerFileKinds::isPicture(f->type)) {
        WebBrowser1->setPixmap(QPixmap());
        WebBrowser1->setText(QString());
        emit previewShown(false);
        return;
    }
    WebBrowser1->setPixmap(QPixmap());
    WebBrowser1->setText(QStringLiteral("Загрузка картинки…"));
    m_files->preview(*f, kPreviewWidth);
}

void TServerSmeta::updateActions() {
    const bool idle = !busy();
    const bool chosen = selectedFile() != nullptr;
    spdDeleteFile->setEnabled(idle && chosen);
    spdLoadServer->setEnabled(idle && chosen);
    spdSaveFileServer->setEnabled(idle);
    spdDropTable->setEnabled(idle && m_model->rowCount() > 0);
    spdFirst->setEnabled(m_model->rowCount() > 0);
    spdLast->setEnabled(m_model->rowCount() > 0);
}

bool TServerSmeta::checkReady(bool needsRow) {
    if (busy())
        return false;
    if (const QString p = m_files->problem(); !p.isEmpty()) {
        dialogs().tell(Captions::warning, p, Dialogs::Icon::Warning);
        return false;
    }
    if (needsRow && !selectedFile()) {
        dialogs().tell(Captions::warning, QStringLiteral("Выберите файл в списке."), Dialogs::Icon::Warning);
        return false;
    }
    if (!m_files->connectionPresent()) {
        dialogs().tell(Captions::warning, kNoConnection, Dialogs::Icon::Warning);
        return false;
    }
    return true;
}

#pragma once
// TServerSmeta: the user's files on the server. Left, the object addresses (TreeView1) and the kinds
// of files (TreeView2, "Все файлы" clears the kind); in the centre the files of the chosen address and
// kind (AdvStringGrid1); right, the preview of the chosen picture (WebBrowser1). The tool bar deletes
// every file or one, moves to the first or last row, downloads the chosen file and uploads a file
// under the object address of the box beside it. Transfers run off the window's thread with a
// progress bar and "Отмена". When the window is entered, Timer1 (300 ms, once) connects and reads.
//
// The window asks and tells; ServerFiles talks to the servers, DatabaseRestore restores the user's
// own databases.

#include "StoredFile.h"
#include "storage/Catalogue.h"

#include <QWidget>
#include <functional>

class QAction;
class QComboBox;
class QLabel;
class QModelIndex;
class QProgressBar;
class QPushButton;
class QStandardItemModel;
class QTableView;
class QTimer;
class QToolBar;
class QTreeView;
class ServerFileModel;
class ServerFiles;
class TModuleSQL;

class TServerSmeta : public QWidget {
    Q_OBJECT
public:
    // files: the servers (the window does not own it); module: the local databases a restore replaces.
    TServerSmeta(ServerFiles *files, TModuleSQL *module, QWidget *parent = nullptr);
    ~TServerSmeta() override;

    // The object address new uploads get unless the user types another (the estimate's object).
    void setDefaultAddress(const QString &address);
    // Where the open and save dialogs start.
    void setFolder(const QString &folder) { m_folder = folder; }
    // A second program on the same folder may need to hear that a database changed.
    void setRestoredHandler(std::function<void(Db)> handler) { m_onRestored = std::move(handler); }

    ServerFileModel *model() const { return m_model; }
    // The row chosen in the grid, or null.
    const StoredFile *selectedFile() const;
    bool busy() const;

    QToolBar *ToolBar1 = nullptr;
    QAction *spdDropTable = nullptr;
    QAction *spdFirst = nullptr;
    QAction *spdLast = nullptr;
    QAction *spdDeleteFile = nullptr;
    QAction *spdLoadServer = nullptr;
    QAction *spdSaveFileServer = nullptr;
    QAction *spdRefresh = nullptr;
    QTreeView *TreeView1 = nullptr;
    QTreeView *TreeView2 = nullptr;
    QPushButton *ButtonAllFiles = nullptr;
    QLabel *LabelAddress = nullptr;
    QLabel *LabelKind = nullptr;
    QComboBox *EditAddress = nullptr;
    QTableView *AdvStringGrid1 = nullptr;
    QLabel *WebBrowser1 = nullptr;
    QLabel *LabelStatus = nullptr;
    QProgressBar *ProgressTransfer = nullptr;
    QPushButton *ButtonCancel = nullptr;
    QPushButton *ButtonClose = nullptr;
    QTimer *Timer1 = nullptr;

    void Timer1Timer();
    void spdDropTableClick();
    void spdFirstClick();
    void spdLastClick();
    void spdDeleteFileClick();
    void spdLoadServerClick();
    void spdSaveFileServerClick();
    void ButtonAllFilesClick();
    // Reads the trees and the grid again.
    void readLists();

signals:
    // The lists were read (after entering, a transfer or a deletion).
    void listsRead();
    // A transfer or deletion ended (the message was shown or put in the status line).
    void operationFinished(bool ok);
    // The preview shows the chosen row's picture, or nothing.
    void previewShown(bool picture);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    enum class Operation { None, Upload, Download, Restore, Delete, DeleteAll };

    void build();
    void TreeView1Change();
    void TreeView2Change();
    void AdvStringGrid1SelectCell();
    void showLists(const QStringList &addresses, const QList<StoredFile> &files);
    void onFinished(bool ok, bool cancelled, const QString &message);
    void begin(Operation op, const QString &text);
    void updateActions();
    void updateProgress();
    void selectRow(int row);
    bool checkReady(bool needsRow);
    void restoreDatabase(const StoredFile &row, Db db);

    ServerFiles *m_files;
    TModuleSQL *m_module;
    ServerFileModel *m_model;
    QStandardItemModel *m_addresses;
    QStandardItemModel *m_kinds;
    QTimer *m_progressTimer;
    QWidget *m_transferBar = nullptr;
    QLabel *m_transferText = nullptr;
    QString m_folder;
    QString m_defaultAddress;
    Operation m_operation = Operation::None;
    QString m_restoreTemp;
    Db m_restoreDb = Db::People;
    StoredFile m_keepSelected; // the row to choose again after the lists are read
    std::function<void(Db)> m_onRestored;
};

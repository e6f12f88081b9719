#include "ui/about_window.h"

#include "ui/menu_bar_icon_renderer.h"
#include "ui/shell_window_presenter.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace paneforge {

namespace {

// The icon in the text colour of the window's palette, so that it reads on light and dark themes
// alike, sharp at any scale.
class AboutIcon final : public QWidget {
public:
    explicit AboutIcon(QWidget* parent)
        : QWidget(parent) {
        setFixedSize(64, 64);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        MenuBarIconRenderer::drawIcon(painter, QSizeF(size()), palette().color(foregroundRole()));
    }
};

std::unique_ptr<QDialog> makeDialog() {
    auto dialog = std::make_unique<QDialog>();
    dialog->setWindowTitle(QStringLiteral("About Paneforge"));
    // A small floating window that is neither resized nor minimised.
    dialog->setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                           Qt::WindowStaysOnTopHint);
    dialog->setFixedSize(420, 228);

    auto* name = new QLabel(QStringLiteral("Paneforge"), dialog.get());
    QFont nameFont = name->font();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.6);
    nameFont.setBold(true);
    name->setFont(nameFont);
    auto* version = new QLabel(AboutWindow::versionText(), dialog.get());
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* description = new QLabel(AboutWindow::descriptionText(), dialog.get());
    description->setWordWrap(true);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(6);
    texts->addWidget(name);
    texts->addWidget(version);
    texts->addSpacing(6);
    texts->addWidget(description);
    texts->addStretch();

    auto* top = new QHBoxLayout;
    top->setSpacing(20);
    top->addWidget(new AboutIcon(dialog.get()), 0, Qt::AlignTop);
    top->addLayout(texts, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog.get());
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog.get(), &QDialog::reject);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);

    auto* layout = new QVBoxLayout(dialog.get());
    layout->setContentsMargins(24, 24, 24, 16);
    layout->addLayout(top, 1);
    layout->addWidget(buttons);
    return dialog;
}

} // namespace

AboutWindow::AboutWindow(NativeWindows& nativeWindows)
    : nativeWindows_(nativeWindows) {}

AboutWindow::~AboutWindow() = default;

QString AboutWindow::versionText() {
    return QStringLiteral("Version ") + QStringLiteral(PANEFORGE_VERSION);
}

QString AboutWindow::descriptionText() {
    return QStringLiteral("Drag a window with a key held and drop it into a zone of a layout you "
                          "design for each display.");
}

QDialog& AboutWindow::dialog() {
    if (!dialog_) {
        dialog_ = makeDialog();
    }
    return *dialog_;
}

void AboutWindow::show() {
    presentWindow(dialog(), nativeWindows_);
}

bool AboutWindow::isVisible() const {
    return dialog_ && dialog_->isVisible();
}

} // namespace paneforge

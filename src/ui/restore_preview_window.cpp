#include "ui/restore_preview_window.h"

#include "ui/layout_card_painter.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>

namespace paneforge {

namespace B = RestorePreviewBoardLayout;

namespace {

std::vector<int> countsOf(const std::vector<SettingsBackupPreviewSection>& sections) {
    std::vector<int> counts;
    for (const auto& section : sections) {
        counts.push_back(static_cast<int>(section.layouts.size()));
    }
    return counts;
}

QFont pointFont(const QWidget& widget, double points) {
    QFont font = widget.font();
    font.setPointSizeF(points);
    return font;
}

} // namespace

RestorePreviewBoardView::RestorePreviewBoardView(std::vector<SettingsBackupPreviewSection> sections,
                                                 QWidget* parent)
    : QWidget(parent)
    , sections_(std::move(sections))
    , counts_(countsOf(sections_)) {
    setFixedSize(static_cast<int>(B::boardWidth(counts_) + 2 * B::padding),
                 static_cast<int>(B::boardHeight(counts_)));
}

void RestorePreviewBoardView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const LayoutCardColors colors = LayoutCardColors::from(palette());
    for (std::size_t i = 0; i < sections_.size(); ++i) {
        const double top = B::sectionMinY(static_cast<int>(i), counts_);
        QFont title = pointFont(*this, 12);
        title.setBold(true); // apart from the header text just above the first section
        painter.setFont(title);
        painter.setPen(colors.label);
        painter.drawText(QRectF(B::padding, top, B::boardWidth(counts_), B::sectionHeaderHeight),
                         Qt::AlignLeft | Qt::AlignVCenter, sections_[i].title);
        const auto& layouts = sections_[i].layouts;
        for (std::size_t j = 0; j < layouts.size(); ++j) {
            const B::Rect frame = B::cardFrame(static_cast<int>(j));
            LayoutCardPainter::paint(
                painter, QRectF(B::padding + frame.x, top + frame.y, frame.width, frame.height),
                layouts[j].grid, layouts[j].name, LayoutCardState{}, colors);
        }
    }
}

RestorePreviewWindow::RestorePreviewWindow(const SettingsBackupPreview& preview,
                                           const QString& headerText, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(QStringLiteral("Restore Settings?"));
    auto sections = SettingsBackupPreviewBuilder::sections(preview);
    const B::Size panel = B::panelSize(countsOf(sections));
    setFixedSize(static_cast<int>(panel.width), static_cast<int>(panel.height));
    const int width = static_cast<int>(panel.width);

    auto* header = new QLabel(headerText, this);
    header->setWordWrap(true);
    header->setFont(pointFont(*this, 13));
    header->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    header->setGeometry(static_cast<int>(B::padding), 8, width - 2 * static_cast<int>(B::padding),
                        88);

    auto* board = new RestorePreviewBoardView(std::move(sections));
    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(board);
    scroll->setGeometry(
        0, static_cast<int>(B::chromeHeaderHeight), width,
        static_cast<int>(panel.height - B::chromeHeaderHeight - B::chromeFooterHeight));

    // The footer's buttons, measured from its right and bottom edges.
    const int buttonTop = static_cast<int>(panel.height) - 14 - 32;
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setGeometry(width - 208, buttonTop, 92, 32);
    auto* restore = new QPushButton(QStringLiteral("Restore"), this);
    restore->setGeometry(width - 108, buttonTop, 92, 32);
    restore->setDefault(true); // Return; Escape rejects, as in every dialog
    restore->setFocus();
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(restore, &QPushButton::clicked, this, &QDialog::accept);
}

} // namespace paneforge

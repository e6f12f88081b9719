#pragma once

#include "app/ports/native_windows.h"
#include "app/ports/preferences_view.h"

#include <QString>
#include <array>
#include <memory>
#include <vector>

class QCheckBox;
class QDialog;
class QLabel;
class QPushButton;
class QSlider;

namespace paneforge {

// The preferences window in Qt Widgets: a plain form laid out with Qt layouts (it grows with the
// font and the scale), navigable with the keyboard, no mnemonics (they would take Alt
// combinations away from the hot-key recorder). Titled "Preferences", which the snap controller
// recognises. Escape, the Close button and the title bar's close only hide it.
//
// Controls carry object names for tests: "marginSlider", "marginValueLabel",
// "singleCmdCheckbox", "singleShiftCheckbox", "singleOptionCheckbox", "singleControlCheckbox"
// and the same with "multi",
// "hotkeyValueLabel<id>", "recordHotkeyButton<id>", "clearHotkeyButton<id>",
// "launchAtLoginCheckbox", "launchAtLoginInfoLabel", "hideMenuBarIconCheckbox",
// "hideMenuBarIconInfoLabel", "restoreWindowSizeOnUnsnapCheckbox", "closeButton".
class PreferencesWindow final : public PreferencesView {
public:
    PreferencesWindow(PreferencesFormEvents& events, NativeWindows& nativeWindows);
    ~PreferencesWindow() override;
    PreferencesWindow(const PreferencesWindow&) = delete;
    PreferencesWindow& operator=(const PreferencesWindow&) = delete;

    void display(const PreferencesForm& form) override;
    void present() override;
    void close() override;
    bool isVisible() const override;

    QDialog& dialog();

    static QString title() { return QStringLiteral("Preferences"); }
    // The slider works in hundredths of a point: continuous to the eye, exact for 12.7.
    static constexpr int kSliderUnitsPerPoint = 100;
    static constexpr int kMaximumMarginPoints = 40;

private:
    class Dialog;
    struct HotkeyRowWidgets {
        HotkeySlotId slot;
        QLabel* title;
        QLabel* value;
        QPushButton* record;
        QPushButton* clear;
    };

    void build();
    void reportSnapRow(SnapCombination row);

    PreferencesFormEvents* events_;
    NativeWindows& nativeWindows_;
    std::unique_ptr<Dialog> dialog_;
    // True while display() sets the controls: nothing is reported back.
    bool displaying_ = false;

    QSlider* marginSlider_ = nullptr;
    QLabel* marginValueLabel_ = nullptr;
    std::vector<HotkeyRowWidgets> hotkeyRows_;
    std::array<QCheckBox*, 4> singleBoxes_{};
    std::array<QCheckBox*, 4> multiBoxes_{};
    std::array<std::uint32_t, 4> boxBits_{};
    QCheckBox* launchAtLogin_ = nullptr;
    QLabel* launchAtLoginInfo_ = nullptr;
    QCheckBox* hideMenuBarIcon_ = nullptr;
    QLabel* hideMenuBarIconInfo_ = nullptr;
    QCheckBox* restoreWindowSize_ = nullptr;
    QPushButton* closeButton_ = nullptr;
};

} // namespace paneforge

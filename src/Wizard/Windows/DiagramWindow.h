#pragma once

#include "Types/TypeStructure.h"

#include <QWidget>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class ComboBox;
class Diagram;
class DiagramView;
class ProgressRow;
class QHBoxLayout;
class QLabel;
class QPushButton;

/// A picture of the types around one type, to go through, zoom, move and save. A window of its own beside the wizard,
/// which goes when it is closed or when its owner goes. If the types go, the picture stays, and leads to no other.
class DiagramWindow : public QWidget
{
    Q_OBJECT

public:
    DiagramWindow(QWidget* owner, const std::shared_ptr<const TypeStructure>& structure);

    /// Draws the picture of a type in a thread of its own and shows the window with it. What the type reaches is shown
    /// whole if it is little, else its neighbours alone. Returns when the picture is there; the window is closed if the
    /// user cancels that.
    void open(std::uint32_t type);

Q_SIGNALS:
    /// The user has chosen a type of the picture; the structure is still the one that the window was made with.
    void typeChosen(std::uint32_t type);

private:
    QHBoxLayout* makeChoiceRow();
    QWidget* makeButtons();
    bool runLong(const std::function<void()>& work);
    bool draw(std::uint32_t type);
    void redraw();
    void goTo(std::size_t box);
    void goBack();
    void choose(std::size_t box);
    bool areTypesThere();
    QString countOf(std::size_t types, bool isWhole) const;
    void save();
    CString save(bool isSvgOnly);
    CString bytesFor(const CString& fileName);
    bool wantsSvgInstead();

    std::weak_ptr<const TypeStructure> structure;
    std::vector<std::uint32_t> earlier; // the types that the picture was of before
    std::uint32_t shown = 0;            // the type that it is of
    std::shared_ptr<const Diagram> diagram;
    QString name; // of the type
    DiagramView* view;
    QLabel* status;
    ComboBox* depth;
    ComboBox* way;
    QPushButton* backButton;
    QWidget* buttons;
    QWidget* work; // in place of the buttons while something takes long
    ProgressRow* progress;
    QPushButton* cancelButton;
};

#pragma once

#include "Types/TypeStructure.h"
#include "Ui/SideWindow.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class ComboBox;
class Diagram;
class DiagramView;
class ProgressRow;
class QLabel;

/// A window beside the wizard with a picture of the types around one type, to explore, zoom, move and save. It ends
/// when it or its owner is closed. If the types are freed, the picture stays, but no other type can be shown: the
/// window only has a weak pointer to the structure, which the page of types drops before the importer frees the types.
class DiagramWindow : public SideWindow
{
    Q_OBJECT

public:
    /// The window destroys itself when it is closed. It is not shown before open().
    DiagramWindow(QWidget* owner, const std::shared_ptr<const TypeStructure>& structure);

    /// Draws the picture of a type in a thread of its own and then shows the window. Shows all types that it reaches if
    /// they are few, else only its neighbours. Closes the window if the user cancels. `type` is a number of the
    /// structure, which must still exist.
    void open(std::uint32_t type);

Q_SIGNALS:
    /// Emitted if the user chooses a type of the picture. Its number refers to the structure given to the constructor,
    /// which still exists.
    void typeChosen(std::uint32_t type);

private:
    QHBoxLayout* makeChoiceRow();
    QWidget* makeButtons();
    bool runLong(const std::function<void()>& work);
    // Returns false if the picture that is shown stays: the work was cancelled, or the types are gone.
    bool draw(std::uint32_t type);
    // Draws the shown type again, by the choices of direction and depth.
    void redraw();
    // Continues with the type of a box, or with the type shown before.
    void goTo(std::size_t box);
    void goBack();
    // Passes the choice of a box on as the choice of its type.
    void choose(std::size_t box);
    bool areTypesThere();
    // Returns the text of the status line about the number of types.
    QString countOf(std::size_t types, bool isComplete) const;
    void save();
    CString bytesFor(const CString& fileName);
    bool wantsSvgInstead();

    std::weak_ptr<const TypeStructure> structure;
    std::vector<std::uint32_t> earlier;     // types shown before, for Back
    std::uint32_t shown = 0;                // the type shown
    int shownDirection = 0, shownDepth = 0; // the choices of the shown picture
    std::shared_ptr<const Diagram> diagram; // shown; `view` shares it
    QString name;                           // of the shown type
    DiagramView* view;
    QLabel* status;
    ComboBox* depth;     // row kAllDepths: any
    ComboBox* direction; // rows are numbers of TypeStructure::Direction
    QPushButton* backButton;
    QWidget* buttons;
    QWidget* work; // shown instead of the buttons during long work
    ProgressRow* progress;
    QPushButton* cancelButton;
};

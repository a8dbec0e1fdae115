#pragma once

#include <QWidget>

#include <cstdint>

class DiagramScene;
class DiagramView;
class QHBoxLayout;
class QLabel;
class TypeStructure;

/// A picture of the types that one type reaches, to zoom, move and save. A window of its own beside the wizard, which
/// goes when it is closed or when its owner goes, and doesn't need the types once it is made.
class DiagramWindow : public QWidget
{
public:
    DiagramWindow(QWidget* owner, const TypeStructure& structure, std::uint32_t type);

private:
    QHBoxLayout* makeButtonRow();
    void save();

    QString name;
    DiagramScene* scene;
    DiagramView* view;
    QLabel* status;
};

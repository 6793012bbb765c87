// Small pieces the computation windows share: text and dates between the library and Qt, cells
// of amounts, the window frame with its button row, the line under a result that says what
// went wrong.
#pragma once

#include <QBoxLayout>
#include <QDate>
#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QString>
#include <QStringList>
#include <functional>
#include <string>
#include <string_view>

#include "kivmovfrec/variant.h"

class QLabel;
class QTableWidget;
class QTableWidgetItem;
class QTreeWidgetItem;

namespace kivmovfrec::qt {

QString Q(std::string_view s);

// A date as people read it ("dd/mm/aaaa"), the time of day left out.
QString FechaQ(Date d);
QDate AQDate(Date d);
Date DeQDate(const QDate& d);

// A table cell that cannot be edited; amounts are right-aligned.
QTableWidgetItem* Celda(const QString& texto, bool importe = false);
// Right-aligns column `columna` of a tree row.
void AlinearImporte(QTreeWidgetItem& fila, int columna);
// A table with the given column captions, read-only, whole rows selected.
QTableWidget* Tabla(QWidget* padre, const char* nombre, const QStringList& columnas);

// A message line for errors: red, selectable, wrapped; hidden while empty.
QLabel* LineaError(QWidget* padre, const char* nombre);
void MostrarError(QLabel& linea, const std::string& texto);

// The modal window of a computation: a vertical layout, its object name and caption, and the
// "Cerrar" button, which Escape also presses (closing is refused while `ocupada` is true).
class VentanaCalculo : public QDialog {
 public:
  VentanaCalculo(QWidget* padre, const char* nombre, const QString& titulo);
  QBoxLayout& Cuerpo() { return *cuerpo_; }
  QDialogButtonBox& Botones() { return *botones_; }
  QPushButton& Cerrar() { return *cerrar_; }
  // While true the window does not close: Escape and the window's close box call al_rechazar.
  bool ocupada = false;
  std::function<void()> al_rechazar;
  void reject() override;

 protected:
  void closeEvent(QCloseEvent* e) override;

 private:
  QBoxLayout* cuerpo_;
  QDialogButtonBox* botones_;
  QPushButton* cerrar_;
};

}  // namespace kivmovfrec::qt

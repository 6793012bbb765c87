// A person at the keyboard and mouse of the Qt windows, for the tests: actions queued per
// window are run on each window as it opens (OpcionesVentanas::al_mostrar), through real key
// and mouse events.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "ventanas_qt.h"

namespace kivmovfrec::testing {

// Offscreen windows: no display needed.
inline void AplicacionSinPantalla() {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qt::AsegurarAplicacion(true);
}

template <class W>
W& Hijo(QWidget& ventana, const std::string& nombre) {
  W* w = ventana.findChild<W*>(QString::fromStdString(nombre));
  if (!w) throw std::runtime_error(ventana.objectName().toStdString() + " no tiene " + nombre);
  return *w;
}

// Types into a line edit the way a person does: click, select all, type.
inline void Escribir(QWidget& ventana, const std::string& campo, const std::string& texto) {
  auto& e = Hijo<QLineEdit>(ventana, campo);
  QTest::mouseClick(&e, Qt::LeftButton);
  QTest::keyClick(&e, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(&e, QString::fromStdString(texto));
}

// Clicks a button (push button or tool button) by control name, or a message box's button by
// its caption without access keys.
inline void Pulsar(QWidget& ventana, const std::string& boton) {
  if (auto* b = ventana.findChild<QAbstractButton*>(QString::fromStdString(boton))) {
    QTest::mouseClick(b, Qt::LeftButton);
    return;
  }
  for (QAbstractButton* b : ventana.findChildren<QAbstractButton*>())
    if (b->text().remove('&') == QString::fromStdString(boton)) {
      QTest::mouseClick(b, Qt::LeftButton);
      return;
    }
  throw std::runtime_error(ventana.objectName().toStdString() + " no tiene el botón " + boton);
}

// Follows a link (a label holding one anchor) with a click on its first letters.
inline void SeguirEnlace(QWidget& ventana, const std::string& enlace) {
  auto& l = Hijo<QLabel>(ventana, enlace);
  QTest::mouseClick(&l, Qt::LeftButton, {}, QPoint(l.contentsRect().left() + 3, l.height() / 2));
}

// Chooses a list entry by caption with the arrow keys.
inline void Elegir(QWidget& ventana, const std::string& lista, const std::string& opcion) {
  auto& c = Hijo<QComboBox>(ventana, lista);
  const int destino = c.findText(QString::fromStdString(opcion));
  if (destino < 0) throw std::runtime_error(lista + " no tiene " + opcion);
  c.setFocus();
  while (c.currentIndex() < destino) QTest::keyClick(&c, Qt::Key_Down);
  while (c.currentIndex() > destino) QTest::keyClick(&c, Qt::Key_Up);
}

inline int ColumnaDe(QTableWidget& t, const std::string& encabezado) {
  for (int c = 0; c < t.columnCount(); ++c)
    if (t.horizontalHeaderItem(c)->text().toStdString() == encabezado) return c;
  throw std::runtime_error("sin la columna " + encabezado);
}

// Clicks a cell (row `fila` counted from 0 among all rows).
inline QTableWidget& ClicEnCelda(QWidget& ventana, const std::string& grilla, int fila,
                                 int columna) {
  auto& t = Hijo<QTableWidget>(ventana, grilla);
  t.scrollToItem(t.item(fila, columna));
  QTest::mouseClick(t.viewport(), Qt::LeftButton, {},
                    t.visualItemRect(t.item(fila, columna)).center());
  return t;
}

// Ticks a check-box cell from the keyboard: the row is clicked in `junto_a`, then the cursor
// moves to the first column (Home) and Space toggles the box.
inline void TildarPrimera(QWidget& ventana, const std::string& grilla, int fila, int junto_a) {
  auto& t = ClicEnCelda(ventana, grilla, fila, junto_a);
  QTest::keyClick(&t, Qt::Key_Home);
  QTest::keyClick(&t, Qt::Key_Space);
}

// Types into a cell: the first key opens the editor, Enter commits.
inline void EscribirCelda(QWidget& ventana, const std::string& grilla, int fila, int columna,
                          const std::string& texto) {
  auto& t = ClicEnCelda(ventana, grilla, fila, columna);
  const QString q = QString::fromStdString(texto);
  QTest::keyClicks(&t, q.left(1));
  QLineEdit* editor = nullptr;
  for (QLineEdit* e : t.viewport()->findChildren<QLineEdit*>())
    if (e->isVisible()) editor = e;
  if (!editor) throw std::runtime_error(grilla + ": la celda no se abrió para escribir");
  QTest::keyClicks(editor, q.mid(1));
  QTest::keyClick(editor, Qt::Key_Return);
  QCoreApplication::processEvents();  // the view commits an editor's Return in a queued call
}

class Persona {
 public:
  // Acts on the next window to open, which must be named `ventana`.
  Persona& En(std::string ventana, std::function<void(QWidget&)> accion) {
    pasos_.emplace_back(std::move(ventana), std::move(accion));
    return *this;
  }
  qt::OpcionesVentanas Opciones() {
    qt::OpcionesVentanas o;
    o.al_mostrar = [this](QWidget& w) { Actuar(w); };
    return o;
  }
  bool Terminada() const { return pasos_.empty(); }

 private:
  // A failing action, or a window nobody expected, is a test failure; the window is then closed
  // (as cancelled) so that the test does not hang. So is a window left open for 20 s.
  void Actuar(QWidget& w) {
    QPointer<QWidget> v = &w;
    QTimer::singleShot(20000, &w, [v] {
      if (!v || !v->isVisible()) return;
      ADD_FAILURE() << v->objectName().toStdString() << " quedó abierta";
      v->close();
    });
    const std::string nombre = w.objectName().toStdString();
    if (pasos_.empty() || pasos_.front().first != nombre) {
      auto* caja = qobject_cast<QMessageBox*>(&w);
      ADD_FAILURE() << "se abrió " << nombre
                    << (caja ? " «" + caja->text().toStdString() + "»" : "") << " y se esperaba "
                    << (pasos_.empty() ? "(nada)" : pasos_.front().first);
      w.close();
      return;
    }
    auto accion = std::move(pasos_.front().second);
    pasos_.pop_front();
    try {
      accion(w);
    } catch (const std::exception& e) {
      ADD_FAILURE() << nombre << ": " << e.what();
      if (v) v->close();
    }
  }
  std::deque<std::pair<std::string, std::function<void(QWidget&)>>> pasos_;
};

}  // namespace kivmovfrec::testing

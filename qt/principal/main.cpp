// movfrec-qt: the desktop main window of the frequent-movements component.
//
//   movfrec-qt [--db URI] [--empresa N] [--usuario N] [--hoy FECHA] [--captura PNG |
//   --foto-pantalla PNG]
//
// Opens the database as movfrec does (--db, else MOVFREC_DB, else sqlite:movfrec.db), builds the
// suite's default services for the user with Qt windows for every dialog and message, and shows
// the main window of the company. --captura renders the window to a PNG off screen and ends;
// --foto-pantalla shows it on the display and writes what the screen shows to a PNG.
// Exit status: 0 done, 1 the database or the company could not be opened (said in a message box
// and on stderr), 2 a wrong command line.
#include <CLI/CLI.hpp>
#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "kivmovfrec/db.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/mov_frecuente.h"
#include "kivmovfrec/services.h"
#include "kivmovfrec/vb.h"
#include "ventana_principal.h"
#include "ventanas_qt.h"

namespace {

using namespace kivmovfrec;

struct Opciones {
  std::string db = "sqlite:movfrec.db";
  int32_t empresa = 1;
  int32_t usuario = 1;
  std::string hoy;
  std::string captura;
  std::string foto;
};

CLI::Validator FechaValida() {
  return CLI::Validator(
      [](std::string& valor) -> std::string {
        if (vb::ParseDate(valor)) return {};
        return "«" + valor + "» no es una fecha válida (use aaaa-mm-dd o dd/mm/aaaa)";
      },
      "FECHA");
}

// Says why the program cannot go on: on stderr, and in a message box unless taking a picture.
int Fallo(const Opciones& o, const std::string& texto) {
  std::cerr << "movfrec-qt: " << texto << '\n';
  if (o.captura.empty() && o.foto.empty()) {
    QMessageBox caja(QMessageBox::Critical, "Movimientos Frecuentes", QString::fromStdString(texto),
                     QMessageBox::Ok);
    caja.setObjectName("mensaje");
    caja.button(QMessageBox::Ok)->setText("&Aceptar");
    caja.exec();
  }
  return 1;
}

int Correr(int argc, char** argv) {
  Opciones o;
  if (const char* env = std::getenv("MOVFREC_DB"); env != nullptr && *env != '\0') o.db = env;
  CLI::App app{"movfrec-qt: ventana principal de los movimientos frecuentes de la empresa.",
               "movfrec-qt"};
  auto formato = app.get_formatter();
  formato->label("Usage", "Uso");
  formato->label("OPTIONS", "OPCIONES");
  formato->column_width(34);
  app.option_defaults()->group("Opciones");
  app.set_help_flag("-h,--help", "Muestra la ayuda y termina");
  app.add_option("--db", o.db,
                 "Base de datos: sqlite:ARCHIVO, sqlite::memory: o postgresql://... "
                 "(si falta, MOVFREC_DB; si no, sqlite:movfrec.db)")
      ->type_name("URI");
  app.add_option("--empresa", o.empresa, "Empresa (1 si falta)")
      ->type_name("N")
      ->check(CLI::Range(1, INT32_MAX));
  app.add_option("--usuario", o.usuario, "Usuario (1 si falta)")
      ->type_name("N")
      ->check(CLI::Range(0, INT32_MAX));
  app.add_option("--hoy", o.hoy, "Fija la fecha de hoy (aaaa-mm-dd o dd/mm/aaaa)")
      ->check(FechaValida());
  app.add_option("--captura", o.captura, "Dibuja la ventana en este PNG, sin pantalla, y termina")
      ->type_name("PNG");
  app.add_option("--foto-pantalla", o.foto,
                 "Muestra la ventana, guarda en este PNG la pantalla tal como se ve y termina")
      ->type_name("PNG")
      ->excludes("--captura");
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::cerr << "movfrec-qt: " << e.what() << "\nUse «movfrec-qt --help» para ver la ayuda.\n";
    return 2;
  }

  qt::AsegurarAplicacion(!o.captura.empty());
  std::shared_ptr<Connection> cn;
  try {
    cn = OpenConnection(o.db);
    clsEmpresa empresa;
    if (!empresa.Load(o.empresa, *cn))
      return Fallo(o, "La empresa " + std::to_string(o.empresa) + " no existe en " + o.db +
                          " (revise --empresa).");
  } catch (const DbError& e) {
    std::string texto = "No se pudo abrir la base de datos " + o.db + ":\n" + DescribirErrorDb(e);
    if (e.kind() == DbErrorKind::MissingTable)
      texto += "\nSi la base de datos es nueva, cree las tablas con «movfrec init».";
    return Fallo(o, texto);
  } catch (const std::exception& e) {
    return Fallo(o, "No se pudo abrir la base de datos " + o.db + ":\n" + e.what());
  }

  DefaultServiceOptions opciones;
  if (!o.hoy.empty()) opciones.hoy = vb::DateOnly(*vb::ParseDate(o.hoy));
  SuiteServices servicios = SuiteServices::Defaults(cn, o.usuario, opciones);
  qt::Instalar(servicios);
  clsMovFrecuente mf;
  mf.Servicios(servicios);
  std::unique_ptr<qt::VentanaPrincipal> ventana;
  try {
    mf.Connect(cn);
    mf.Empresa(o.empresa);
    ventana = std::make_unique<qt::VentanaPrincipal>(mf, o.empresa, o.usuario);
  } catch (const DbError& e) {
    return Fallo(o, "No se pudieron leer los movimientos de " + o.db + ":\n" + DescribirErrorDb(e));
  }
  if (!o.captura.empty()) {
    const std::string error = qt::GuardarCaptura(*ventana, o.captura);
    if (!error.empty()) return Fallo(o, error);
    std::cout << "Captura: " << o.captura << '\n';
    return 0;
  }
  if (!o.foto.empty()) {
    const std::string error = qt::FotografiarPantalla(*ventana, o.foto);
    if (!error.empty()) return Fallo(o, error);
    std::cout << "Foto de la pantalla: " << o.foto << '\n';
    return 0;
  }
  ventana->show();
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Correr(argc, argv);
  } catch (const std::exception& e) {
    std::cerr << "movfrec-qt: error: " << e.what() << '\n';
    return 1;
  }
}

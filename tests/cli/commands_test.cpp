// movfrec ver / exportar / importar / estado / borrar / realizar / agenda / ejecutar, run as a
// script would run them, on a fresh demo database per test.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli_db.h"
#include "platform/vb/convert.h"
#include "support/db_snapshot.h"

namespace {

using kivmovfrec::testing::MovementTables;
using kivmovfrec::testing::TakeSnapshot;
using kmf_cli::Has;
using kmf_cli::Result;
using kmf_cli::Slurp;

using Json = nlohmann::ordered_json;

// Each test runs on a fresh demo database of each engine.
class MovfrecComandos : public kmf_cli::DemoMotorTest {
 protected:
  void TearDown() override {
    for (const char* suffix : {".json", ".ics"}) std::remove((base_ + suffix).c_str());
  }

  Json Ver(int id) { return RunJson({"ver", std::to_string(id)}); }

  std::string Write(const std::string& text) {
    const std::string path = base_ + ".json";
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  size_t Movements() { return RunJson({"listar"}).size(); }
};

// A voucher with a monthly schedule that ends, a notice lead and a postponement, and two lines:
// one with every optional column set, one with all of them empty (stored as NULL).
const char* const kNuevo = R"({
  "MovFrecuente": {"Estado": 0, "FechaEstado": "05/11/2026 08:15:30", "Vista": 0, "Detalle": "",
    "Imagen": 4, "ID": 0, "Empresa": 1, "Tipo": 2, "DelSistema": 0,
    "Nombre": "Mantenimiento de ascensores", "Memo": "Abono de &[FMes-1]\nSegunda línea",
    "Ente": 3, "Modalidad": 2, "TipoImporte": 2, "Moneda": 1, "Recurrencia": 0,
    "MovVinculado": 0, "OrdenMovVinculado": 0, "UsuarioAlta": 1, "UsuarioAutoriza": 4},
  "Recurrencia": {"ID": 0, "NotificarDias": 2.5, "Notificar": 1, "SinVencimiento": 0,
    "FechaProxima": "15/12/2026 09:30", "CantidadVeces": 0, "CadaCuanto": 1,
    "TipoRecurrencia": 2, "EraNotificacion": "12/12/2026 21:30", "Postergado": 1,
    "Frecuencia": "200001", "FechaInicio": "15/10/2026 09:30", "FechaFinal": "15/06/2027",
    "NumOcurrencia": 3},
  "Renglones": [
    {"Cuenta": 145, "Proyecto": 1, "Departamento": 2, "Orden": 0, "AlDebe": true,
     "Formula": "[1:105;0;0]*0.5", "ImporteCta": 1234.56, "ImporteMF": 0.1, "TipoCambio": 2,
     "ValorTC": 1425.75, "Detalle": "Abono mensual"},
    {"Cuenta": 111, "Proyecto": 0, "Departamento": 0, "Orden": 0, "AlDebe": false,
     "Formula": null, "ImporteCta": 0, "ImporteMF": 0, "TipoCambio": 0, "ValorTC": 0,
     "Detalle": ""}
  ]
})";

// exportar then importar changes no stored field: every row of the movement tables and the key
// counters is what it was, for every movement of each demo company.
TEST_P(MovfrecComandos, ExportThenImportKeepsEveryStoredRow) {
  for (const std::string empresa : {"1", "2"}) {
    std::vector<std::string> exportar = {"--empresa", empresa, "exportar"};
    for (auto rs = cn->OpenResultset(
             "Select MFrID From genMovimientosFrecuentes Where MFrEmpresa = " + empresa);
         !rs->Eof(); rs->MoveNext()) {
      exportar.push_back(std::to_string(kivmovfrec::vb::CLng(rs->Get(0))));
    }
    ASSERT_GT(exportar.size(), 3u);
    const Result exportado = Run(exportar);
    ASSERT_EQ(exportado.status, 0) << exportado.err;
    const auto antes = TakeSnapshot(*cn, MovementTables());
    const Result importado = Run({"--empresa", empresa, "importar", Write(exportado.out)});
    ASSERT_EQ(importado.status, 0) << importado.err;
    EXPECT_EQ(TakeSnapshot(*cn, MovementTables()), antes) << "empresa " << empresa;
  }
}

// A new movement stores what the file gives, with keys from the counters; an update replaces
// its schedule and lines; a count of occurrences is stored as the last date it gives.
TEST_P(MovfrecComandos, ImportCreatesAndReplaces) {
  const Json dado = Json::parse(kNuevo);
  const Json creados = RunJson({"importar", Write(kNuevo)});
  ASSERT_EQ(creados.size(), 1u);
  EXPECT_EQ(creados[0]["Nuevo"], true);
  const int id = creados[0]["ID"].get<int>();
  EXPECT_GT(id, 100);  // drawn from the table counter, above every demo key
  const Json mov = Ver(id);
  for (const char* parte : {"MovFrecuente", "Recurrencia"}) {
    for (const auto& [clave, valor] : dado[parte].items()) {
      if (clave == "ID" || clave == "Recurrencia") continue;
      EXPECT_EQ(mov[parte][clave], valor) << clave;
    }
  }
  ASSERT_EQ(mov["Renglones"].size(), 2u);
  for (size_t i = 0; i < 2; ++i) {
    for (const auto& [clave, valor] : dado["Renglones"][i].items()) {
      const Json esperado = clave == "Orden" ? Json(i + 1) : valor.is_null() ? Json("") : valor;
      EXPECT_EQ(mov["Renglones"][i][clave], esperado) << i << " " << clave;
    }
  }
  EXPECT_EQ(mov["Renglones"][0]["CuentaNombre"], "Servicios y honorarios");

  // An update without schedule and with one line less: the stored ones go too.
  Json cambio = mov;
  cambio["Recurrencia"] = nullptr;
  cambio["Renglones"].erase(1);
  EXPECT_EQ(RunJson({"importar", Write(cambio.dump())})[0]["Nuevo"], false);
  const Json despues = Ver(id);
  EXPECT_TRUE(despues["Recurrencia"].is_null());
  EXPECT_EQ(despues["MovFrecuente"]["Recurrencia"], 0);
  EXPECT_EQ(despues["Renglones"].size(), 1u);

  // Four monthly occurrences from 31/01/2024 end on 30/04/2024.
  cambio["Recurrencia"] = {
      {"FechaProxima", "31/01/2024"}, {"Frecuencia", "200001"}, {"CantidadVeces", 4}};
  RunJson({"importar", Write(cambio.dump())});
  EXPECT_EQ(Ver(id)["Recurrencia"]["FechaFinal"], "30/04/2024");

  // Three second Mondays from 08/01/2024 end on 11/03/2024, kept as a monthly unit; a first due
  // date the rule does not fall on is refused, naming the one it does.
  cambio["Recurrencia"] = {
      {"FechaProxima", "08/01/2024"}, {"Frecuencia", "421001"}, {"CantidadVeces", 3}};
  RunJson({"importar", Write(cambio.dump())});
  EXPECT_EQ(Ver(id)["Recurrencia"]["FechaFinal"], "11/03/2024");
  EXPECT_EQ(Ver(id)["Recurrencia"]["TipoRecurrencia"], 2);
  cambio["Recurrencia"]["FechaProxima"] = "01/01/2024";
  ExpectFails({"importar", Write(cambio.dump())}, 1,
              ".Recurrencia.FechaProxima: el 01/01/2024 no es un vencimiento de la frecuencia "
              "421001 (El segundo lunes de cada mes): el primero desde esa fecha es el 08/01/2024");
}

// A movement or a company that does not exist: exit 1, a clear message, nothing on stdout.
TEST_P(MovfrecComandos, UnknownIdsAndCompaniesAreRefused) {
  const std::string mov = "no existe el movimiento frecuente 999";
  const std::string emp = "la empresa 99 no existe";
  for (const auto& [args, mensaje] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"ver", "999"}, mov},
           {{"exportar", "1", "999"}, mov},
           {{"--responder", "si", "estado", "999", "1"}, mov},
           {{"--responder", "si", "borrar", "999"}, mov},
           {{"realizar", "999"}, mov},
           {{"--empresa", "99", "listar"}, "movfrec listar: " + emp},
           {{"--empresa", "99", "importar", Write(kNuevo)}, "movfrec importar: " + emp},
       }) {
    ExpectFails(args, 1, mensaje);
  }
  EXPECT_EQ(Run({"ver", "cero"}).status, 2);
  const Result texto = Run({"ver", "6"});  // the person's view: the schedule in words
  EXPECT_TRUE(Has(texto.out, "Honorarios del estudio contable")) << texto.out;
  EXPECT_TRUE(Has(texto.out, "Todos los meses")) << texto.out;
}

TEST_P(MovfrecComandos, ImportIsAllOrNothing) {
  // The third of three movements has every fault below: each is named, and nothing is written.
  // The last four are schedule members kept only through others, which must agree with them.
  Json valido = Json::parse(kNuevo);
  Json malo = valido;
  struct Falta {
    const char* donde;  // JSON pointer
    Json valor;
    std::string mensaje;
  };
  const std::vector<Falta> faltas = {
      {"/MovFrecuente/Tipo", 7, ".MovFrecuente.Tipo: tipo desconocido 7"},
      {"/MovFrecuente/Nombre", "Pago d'Alessandro",
       ".MovFrecuente.Nombre: no puede contener comillas simples"},
      {"/MovFrecuente/Sobra", 1, ".MovFrecuente.Sobra: clave desconocida"},
      {"/Recurrencia/FechaProxima", "31/02/2027",
       ".Recurrencia.FechaProxima: «31/02/2027» no es una fecha válida"},
      {"/Renglones/1/Cuenta", "111", ".Renglones[1].Cuenta: se esperaba un número entero"},
      {"/Renglones/0/AlDebe", 1, ".Renglones[0].AlDebe: se esperaba true o false"},
      {"/Recurrencia/CadaCuanto", 3,
       ".Recurrencia.CadaCuanto: 3 no coincide con la Frecuencia 200001 (cada 1)"},
      {"/Recurrencia/Notificar", 0, ".Recurrencia.Notificar: 0 no coincide con NotificarDias 2.5"},
      {"/Recurrencia/Posponer", 4, ".Recurrencia.Posponer: 4 no coincide con Postergado 1"},
      {"/Recurrencia/CantidadVeces", 5,
       ".Recurrencia.CantidadVeces: 5 no coincide con la FechaFinal 15/06/2027: desde el "
       "15/10/2026 la frecuencia 200001 ocurre 9 veces"},
  };
  for (const Falta& f : faltas) malo[Json::json_pointer(f.donde)] = f.valor;
  const size_t antes = Movements();
  const Result r = Run({"importar", Write(Json::array({valido, valido, malo}).dump(2))});
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(r.out.empty()) << r.out;
  for (const Falta& f : faltas) EXPECT_TRUE(Has(r.err, "$[2]" + f.mensaje)) << f.mensaje << r.err;
  EXPECT_TRUE(Has(r.err, "no se importó ningún movimiento")) << r.err;
  EXPECT_EQ(r.err.find("$[0]"), std::string::npos) << r.err;
  EXPECT_EQ(Movements(), antes);

  // Refused before anything is written: an update of a movement that does not exist, the same
  // ID twice, another company's movement, lines on accounts that cannot take them, a key given
  // twice, a file that is not JSON, a huge value (quoted cut), a folder, a missing file.
  Json inexistente = valido;
  inexistente["MovFrecuente"]["ID"] = 999;
  Json dos_veces = Ver(18);
  Json de_otra = Ver(23);
  de_otra["MovFrecuente"]["Empresa"] = 0;
  Json cuentas = valido;
  cuentas["Renglones"][0]["Cuenta"] = 999;
  cuentas["Renglones"][1]["Cuenta"] = 100;
  cuentas["Renglones"].push_back(valido["Renglones"][1]);
  cuentas["Renglones"][2]["Cuenta"] = 201;
  Json enorme = valido;
  enorme["MovFrecuente"]["FechaEstado"] = std::string(10 << 20, '9');
  struct Caso {
    std::string texto;
    std::string mensaje;
  };
  for (const Caso& c : std::vector<Caso>{
           {inexistente.dump(), "$.MovFrecuente.ID: no existe el movimiento frecuente 999"},
           {Json::array({dos_veces, dos_veces}).dump(),
            "$[1].MovFrecuente.ID: el movimiento 18 "
            "aparece más de una vez"},
           {de_otra.dump(), "el movimiento 23 es de la empresa 2"},
           {cuentas.dump(),
            "$.Renglones[0].Cuenta: la cuenta 999 no existe\nmovfrec importar: "
            "$.Renglones[1].Cuenta: la cuenta 100 es una carpeta\nmovfrec importar: "
            "$.Renglones[2].Cuenta: la cuenta 201 es de otra empresa (la 2)"},
           {R"({"Renglones": [{}, {"Cuenta": 1, "Cuenta": 2}]})",
            "$.Renglones[1].Cuenta: clave repetida"},
           {"{\"MovFrecuente\": {", "no es JSON válido"},
           {"[1]", "$[0]: se esperaba un objeto JSON"},
           {enorme.dump(),
            "«999999999999999999999999999999999999999999999999999999999999… "
            "(10485760 caracteres)» no es una fecha válida"},
       }) {
    const Result rc = Run({"importar", Write(c.texto)});
    EXPECT_EQ(rc.status, 1) << c.mensaje;
    EXPECT_TRUE(Has(rc.err, c.mensaje)) << rc.err.substr(0, 2000);
    EXPECT_LT(rc.err.size(), 2000u);  // a huge value is quoted cut
  }
  ExpectFails({"importar", ::testing::TempDir()}, 1, "es una carpeta");
  ExpectFails({"importar", base_ + ".no-existe.json"}, 1, "no existe");
  EXPECT_EQ(Movements(), antes);

  // A save that fails after two good ones (the third one's name is taken, which a unique index
  // refuses) leaves nothing: the two updates are rolled back with the new movement, and so is
  // the key counter.
  cn->Execute("Create Unique Index falla On genMovimientosFrecuentes (MFrNombre)");
  Json uno = Ver(18);
  uno["MovFrecuente"]["Nombre"] = "Cambiado 18";
  Json dos = Ver(24);
  dos["MovFrecuente"]["Nombre"] = "Cambiado 24";
  Json tres = valido;
  tres["MovFrecuente"]["Nombre"] = "Alquiler mensual de oficina";  // movement 1's
  const Result medio = Run({"importar", Write(Json::array({uno, dos, tres}).dump())});
  EXPECT_EQ(medio.status, 1);
  EXPECT_TRUE(Has(medio.err,
                  "no se pudo grabar el movimiento $[2] (Alquiler mensual de oficina); se "
                  "deshizo la importación y no se grabó ninguno. Motivo: "))
      << medio.err;
  EXPECT_TRUE(Has(medio.err, postgres() ? "\"falla\"" : "UNIQUE constraint")) << medio.err;
  EXPECT_EQ(Ver(18)["MovFrecuente"]["Nombre"], "Distribución de servicios por sucursal");
  EXPECT_EQ(Ver(24)["MovFrecuente"]["Nombre"], "Flete mensual");
  EXPECT_EQ(Movements(), antes);
  const Json nuevo = RunJson({"importar", Write(kNuevo)});
  EXPECT_EQ(nuevo[0]["ID"], 101);  // the counter gave nothing away
}

// The rights and questions are the library's; here, --responder (No without a terminal) and a
// refusal shown as "[caption] text".
TEST_P(MovfrecComandos, StateChangeAndDeleteAskFirst) {
  ExpectFails({"--responder", "no", "estado", "1", "9"}, 1, "¿Confirma enviar a la papelera?");
  ExpectFails({"--usuario", "2", "--responder", "si", "estado", "1", "9"}, 1,
              "[Asistente de Asientos] Su usuario no está habilitado");
  ExpectFails({"borrar", "20"}, 1, "¿Confirma eliminar el registro?");
  EXPECT_EQ(Ver(1)["MovFrecuente"]["Estado"], 0);
  EXPECT_EQ(Ver(20)["MovFrecuente"]["ID"], 20);

  const Json cambiado = RunJson({"--responder", "si", "estado", "1", "9"});
  EXPECT_EQ(cambiado["Estado"], 9);
  EXPECT_EQ(cambiado["FechaEstado"].get<std::string>().substr(0, 10), "10/11/2026");  // --hoy
  EXPECT_EQ(Ver(1)["MovFrecuente"]["Estado"], 9);
  EXPECT_EQ(Run({"--responder", "si", "estado", "1", "3"}).status, 2);
  EXPECT_EQ(Run({"--responder", "si", "borrar", "20"}).status, 0);
  EXPECT_EQ(Run({"ver", "20"}).status, 1);
}

// The stepping is the library's (and realizar's dates are the agenda's, below); here, what
// realizar reports and refuses.
TEST_P(MovfrecComandos, RealizarReportsTheLinkedMovementsAndRefusesWhatIsNotDue) {
  // Heading a linked group: the linked movement without schedule is listed, unchanged.
  const Json vinculados = RunJson({"realizar", "25"})["Vinculados"];
  ASSERT_EQ(vinculados.size(), 1u);
  EXPECT_EQ(vinculados[0]["ID"], 26);
  EXPECT_TRUE(vinculados[0]["FechaProxima"].is_null());
  ExpectFails({"realizar", "21"}, 1, "no está en proceso");  // a notice already done
  ExpectFails({"realizar", "2"}, 1, "no está agendado");
  const Result texto = Run({"realizar", "22"});
  ASSERT_EQ(texto.status, 0) << texto.err;
  EXPECT_TRUE(Has(texto.out, "próximo vencimiento 20/11/2026 09:00, ocurrencia 8")) << texto.out;
}

// Task lists with their items; marking one done and sending one to the bin ask first.
TEST_P(MovfrecComandos, TareasListsMarksDoneAndBins) {
  const Json listas = RunJson({"tareas", "listar"});
  ASSERT_EQ(listas.size(), 3u);
  EXPECT_EQ(listas[0]["Items"].size(), 4u);
  EXPECT_EQ(listas[0]["Items"][3]["PrecedeNombre"], "Cierre de ejercicio");
  EXPECT_TRUE(listas[1]["Items"].empty());
  ExpectFails({"tareas", "realizar", "28"}, 1, "¿Confirma dar por cumplida la lista de tareas?");
  ExpectFails({"tareas", "papelera", "1"}, 1, "no existe la lista de tareas 1");
  const Json hecha = RunJson({"--responder", "si", "tareas", "realizar", "28"});
  EXPECT_EQ(hecha["FechaProxima"], "15/01/2027 09:00");
  EXPECT_EQ(hecha["NumOcurrencia"], 6);
  EXPECT_EQ(hecha["Items"][0]["Estado"], 1);
  EXPECT_EQ(RunJson({"--responder", "si", "tareas", "papelera", "10"})["Estado"], 9);
  const Result texto = Run({"tareas", "listar"});
  EXPECT_TRUE(Has(texto.out,
                  "Lista 28: Anticipos de ganancias (En proceso), vence 15/01/2027 "
                  "09:00, ocurrencia 6"))
      << texto.out;
  EXPECT_FALSE(Has(texto.out, "Lista 10")) << texto.out;
}

// Unfolds iCalendar content lines, checking CRLF and the 75-octet limit.
std::vector<std::string> IcsLines(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t pos = 0, end; pos < text.size(); pos = end + 2) {
    end = text.find("\r\n", pos);
    if (end == std::string::npos) {
      ADD_FAILURE() << "línea sin CRLF: " << text.substr(pos);
      break;
    }
    const std::string physical = text.substr(pos, end - pos);
    EXPECT_LE(physical.size(), 75u) << physical;
    EXPECT_EQ(physical.find('\n'), std::string::npos);
    if (physical.starts_with(' ') && !lines.empty()) {
      lines.back() += physical.substr(1);
    } else {
      lines.push_back(physical);
    }
  }
  return lines;
}

TEST_P(MovfrecComandos, AgendaListsDueAndNoticeDatesAndWritesICalendar) {
  // A scheduled notice with characters iCalendar escapes and a name long enough to fold.
  Json aviso = Json::parse(kNuevo);
  aviso["MovFrecuente"]["Tipo"] = 3;
  aviso["MovFrecuente"]["Nombre"] =
      "Revisión de ascensores, escaleras; y montacargas \\ del depósito de la calle Güemes "
      "número 1234";
  aviso["Recurrencia"]["FechaProxima"] = "25/11/2026";
  aviso["Recurrencia"]["Postergado"] = 0;
  aviso["Renglones"] = Json::array();
  const int nuevo = RunJson({"importar", Write(aviso.dump())})[0]["ID"].get<int>();

  const std::string ics = base_ + ".ics";
  const Json agenda =
      RunJson({"agenda", "--desde", "2026-11-10", "--hasta", "20/12/2026", "--ics", ics});
  std::vector<std::string> vistos;
  std::string previa;
  for (const Json& e : agenda) {
    const std::string f = e["Fecha"].get<std::string>();
    vistos.push_back(std::string(e["Evento"] == "Vencimiento" ? "V " : "N ") + f + " " +
                     std::to_string(e["ID"].get<int>()));
    // Sorted by date (dd/mm/aaaa -> aaaammdd for the comparison).
    const std::string clave = f.substr(6, 4) + f.substr(3, 2) + f.substr(0, 2) + f.substr(10);
    EXPECT_LE(previa, clave);
    previa = clave;
  }
  auto tiene = [&](const std::string& v) {
    return std::find(vistos.begin(), vistos.end(), v) != vistos.end();
  };
  for (const std::string& esperado : std::vector<std::string>{
           "V 10/11/2026 1", "N 05/12/2026 1", "V 10/12/2026 1",  // monthly, 5 days' notice
           "V 20/11/2026 3", "V 20/12/2026 3",                    // ends 20/12/2026
           "N 18/11/2026 10:00 8", "V 20/11/2026 10:00 8",        // postponed 1 day
           "N 17/12/2026 10:00 8", "V 20/12/2026 10:00 8",        // next one is not
           "N 14/12/2026 15:30 9", "V 15/12/2026 15:30 9",        // once only
           "V 13/11/2026 09:00 22", "V 18/12/2026 09:00 22",      // weekly
           "N 29/11/2026 6", "V 01/12/2026 6",                    // two days' notice
           "V 25/11/2026 " + std::to_string(nuevo),
           "N 22/11/2026 12:00 " + std::to_string(nuevo),  // 2.5 days before
       }) {
    EXPECT_TRUE(tiene(esperado)) << esperado;
  }
  for (const char* ausente : {"N 05/11/2026 1", "V 10/01/2027 1", "V 15/06/2026 09:00 21",
                              "V 31/12/2026 15", "V 06/11/2026 09:00 22"}) {
    EXPECT_FALSE(tiene(ausente)) << ausente;
  }

  // The iCalendar file: one VEVENT per due date with the required properties, text escaped; the
  // notice is the event's alarm.
  const std::vector<std::string> lines = IcsLines(Slurp(ics, false));
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines.front(), "BEGIN:VCALENDAR");
  EXPECT_EQ(lines[1], "VERSION:2.0");
  EXPECT_EQ(lines.back(), "END:VCALENDAR");
  const auto cuantas = [&](const char* patron) {
    const std::regex re(patron);
    return static_cast<size_t>(std::count_if(
        lines.begin(), lines.end(), [&](const auto& l) { return std::regex_match(l, re); }));
  };
  // Each event's UID begins with its movement and due day.
  const auto uid = [](const Json& e) {
    const std::string f = e["FechaVencimiento"].get<std::string>();
    return fmt::format("mf{}-{}{}{}-e1-", e["ID"].get<int>(), f.substr(6, 4), f.substr(3, 2),
                       f.substr(0, 2));
  };
  std::set<std::string> vencimientos;
  for (const Json& e : agenda) vencimientos.insert(uid(e));
  // Task-list items are to-dos due with their list: list 10 on 30/11 18:00 (item 12 done) and
  // list 28 on 15/12 09:00 (item 30 done); each has its own UID, DTSTAMP and SUMMARY.
  const size_t tareas = cuantas("BEGIN:VTODO");
  EXPECT_EQ(tareas, 5u);
  EXPECT_EQ(cuantas("DUE:20261130T180000"), 3u);
  EXPECT_EQ(cuantas("STATUS:COMPLETED"), 2u);
  EXPECT_EQ(cuantas("PRIORITY:1"), 2u);  // importance 1: items 11 and 29
  for (const char* patron :
       {"BEGIN:VEVENT", "END:VEVENT", R"(DTSTART(;VALUE=DATE:\d{8}|:\d{8}T\d{6}))"}) {
    EXPECT_EQ(cuantas(patron), vencimientos.size()) << patron;
  }
  for (const char* patron : {"UID:.+", "SUMMARY:.+", R"(DTSTAMP:\d{8}T\d{6}Z)"}) {
    EXPECT_EQ(cuantas(patron), vencimientos.size() + tareas) << patron;
  }
  std::vector<std::string> uids;
  std::copy_if(lines.begin(), lines.end(), std::back_inserter(uids),
               [](const auto& l) { return l.starts_with("UID:"); });
  std::sort(uids.begin(), uids.end());
  EXPECT_EQ(std::adjacent_find(uids.begin(), uids.end()), uids.end()) << "UID repetido";
  for (const char* linea :
       {"SUMMARY:Vencimiento: Revisión de ascensores\\, escaleras\\; y montacargas \\\\ del "
        "depósito de la calle Güemes número 1234",
        "DTSTART:20261120T100000", "DTSTART;VALUE=DATE:20261110", "ACTION:DISPLAY"}) {
    EXPECT_NE(std::find(lines.begin(), lines.end(), linea), lines.end()) << linea;
  }
  EXPECT_EQ(cuantas(R"(DESCRIPTION:Abono de &\[FMes-1\]\\nSegunda línea\\n.*)"), 1u);

  // python3-icalendar reads this export and a second one: the same events under the same UIDs,
  // one alarm for each notified due date, its trigger the notice's distance from the start
  // (mov. 1 five days, 8 postponed one day, the new one 2.5 days; 3 and 22 notify nothing).
  ASSERT_EQ(
      Run({"agenda", "--desde", "2026-11-10", "--hasta", "20/12/2026", "--ics", ics + "2"}).status,
      0);
  const int leido =
      std::system((kmf_cli::Quote(KMF_PYTHON3) + " " +
                   kmf_cli::Quote(std::string(KMF_SOURCE_DIR) + "/tests/cli/ics_check.py") + " " +
                   kmf_cli::Quote(ics) + " " + kmf_cli::Quote(ics + "2") + " > " +
                   kmf_cli::Quote(base_ + ".py") + " 2>&1")
                      .c_str());
  const std::string salida = Slurp(base_ + ".py");
  ASSERT_EQ(leido, 0) << salida;
  std::map<std::string, std::string> disparo;  // UID's movement and day -> trigger
  std::istringstream en(salida);
  for (std::string u, inicio, t; en >> u >> inicio >> t;)
    disparo[u.substr(0, u.find("-e1-") + 4)] = t;
  EXPECT_EQ(disparo.size(), vencimientos.size()) << salida;
  for (const Json& e : agenda) {
    if (e["Evento"] != "Vencimiento") {
      EXPECT_NE(disparo[uid(e)], "-") << uid(e);
    }
  }
  const std::pair<std::string, const char*> esperados[] = {
      {"mf1-20261110-e1-", "-432000"},
      {"mf1-20261210-e1-", "-432000"},
      {"mf8-20261120-e1-", "-172800"},
      {"mf8-20261220-e1-", "-259200"},
      {fmt::format("mf{}-20261125-e1-", nuevo), "-216000"},
      {"mf3-20261120-e1-", "-"},
      {"mf22-20261113-e1-", "-"}};
  for (const auto& [u, t] : esperados) EXPECT_EQ(disparo[u], t) << u << "\n" << salida;

  // Default range: today (--hoy) and the next 30 days; a text table for people.
  const Json defecto = RunJson({"agenda"});
  ASSERT_FALSE(defecto.empty());
  EXPECT_EQ(defecto.front()["Fecha"], "10/11/2026");
  EXPECT_EQ(defecto.back()["Fecha"], "10/12/2026");
  const Result texto = Run({"agenda", "--hasta", "2026-11-12"});
  ASSERT_EQ(texto.status, 0) << texto.err;
  EXPECT_TRUE(texto.out.starts_with("Fecha")) << texto.out;
  EXPECT_TRUE(Has(texto.out, "Alquiler mensual de oficina")) << texto.out;
  const Result vacio = Run({"agenda", "--desde", "2030-01-01", "--hasta", "2030-01-02"});
  EXPECT_TRUE(Has(vacio.out, "No hay vencimientos ni avisos")) << vacio.out;
}

// The agenda lists the very due dates that marking each occurrence done walks through: monthly
// from the 30th, and monthly on the 31st moved to Monday off the weekend (31/01/2026 is a
// Saturday, so its Monday is after the last date).
TEST_P(MovfrecComandos, AgendaListsTheDatesRealizarWalksThrough) {
  const struct {
    const char *code, *start, *last;
    std::vector<std::string> due;
  } casos[] = {
      {"200001",
       "30/01/2024",
       "30/06/2024",
       {"30/01/2024", "29/02/2024", "30/03/2024", "30/04/2024", "30/05/2024", "30/06/2024"}},
      {"620001",
       "31/08/2025",
       "31/01/2026",
       {"01/09/2025", "30/09/2025", "31/10/2025", "01/12/2025", "31/12/2025"}},
  };
  for (const auto& c : casos) {
    Json mov = Json::parse(kNuevo);
    Json& rec = mov["Recurrencia"];
    rec["Frecuencia"] = c.code;
    rec["FechaInicio"] = c.start;
    rec["FechaProxima"] = c.due.front();
    rec["FechaFinal"] = c.last;
    rec["NumOcurrencia"] = 1;
    const Json id = RunJson({"importar", Write(mov.dump())})[0]["ID"];
    std::vector<std::string> agenda, realizadas = {c.due.front()};
    for (const Json& e : RunJson({"agenda", "--desde", "2024-01-01", "--hasta", "2026-12-31"})) {
      if (e["ID"] == id && e["Evento"] == "Vencimiento") agenda.push_back(e["Fecha"]);
    }
    for (int i = 0; i < 12; ++i) {  // until the last occurrence, which leaves it done
      const Json r = RunJson({"realizar", id.dump()});
      EXPECT_EQ(r["Estado"], r.value("UltimaOcurrencia", true) ? 1 : 0);
      if (r.value("UltimaOcurrencia", true)) break;
      realizadas.push_back(r["FechaProxima"]);
    }
    EXPECT_EQ(agenda, c.due) << c.code;
    EXPECT_EQ(realizadas, c.due) << c.code;
  }
}

// The main job posts what falls due once, even after an old export rewinds the schedules.
TEST_P(MovfrecComandos, EjecutarPostsEachOccurrenceOnceEvenAfterImportingAnOldExport) {
  const std::string viejo = Write(Run({"exportar", "1", "3", "4", "6", "25", "26"}).out);
  const Result r = Run({"ejecutar", "--hasta", "15/01/2027"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(Has(r.out,
                  "10/11/2026  25 Pago de cargas sociales: asiento 102 por 205.000,00; "
                  "asiento 103 del movimiento 26 por 205,00\n"))
      << r.out;
  ASSERT_EQ(Run({"importar", viejo}).status, 0);
  // Every occurrence finds the documents the first run wrote and none is written again; the
  // three whose amounts were all 0 (social charges and their fee after November, the exchange
  // difference of 30/12) had none and write none again.
  const Result otra = Run({"ejecutar", "--hasta", "2027-01-15"});
  EXPECT_TRUE(Has(otra.out,
                  "12 ocurrencias hasta el 15/01/2027: 3 ejecutadas, 9 ya generadas, "
                  "0 hechas en otra ejecución, 0 con error; 0 documentos.\n"))
      << otra.out;
  EXPECT_TRUE(Has(otra.out,
                  "10/11/2026  25 Pago de cargas sociales: ya generado: asiento 102; asiento 103 "
                  "del movimiento 26; la agenda avanza\n"))
      << otra.out;

  // An occurrence that cannot run unattended is reported, exit 1, and stays due; that
  // movement's later occurrences wait for it.
  cn->Execute(
      "Update genRenglonMovFrecuentes Set RMFFormula = '[11:Importe]' Where RMFMovimiento = 1 "
      "And RMFOrden = 1");
  const Result falla = Run({"ejecutar", "--hasta", "2027-03-15"});
  EXPECT_EQ(falla.status, 1);
  EXPECT_TRUE(Has(falla.out, "10/02/2027  1 Alquiler mensual de oficina: no ejecutado: "))
      << falla.out;
  EXPECT_FALSE(Has(falla.out, "10/03/2027  1 ")) << falla.out;
  EXPECT_EQ(Ver(1)["Recurrencia"]["FechaProxima"], "10/02/2027");
  EXPECT_EQ(Run({"ejecutar", "--hasta", "31/02/2027"}).status, 2);
}

// ejecutar --simular prints the documents with their lines and writes nothing (the library
// test compares them with the real run's). pronostico by month as CSV and by week as JSON; the
// notices go beside the figures (stderr with --csv).
TEST_P(MovfrecComandos, SimularWritesNothingAndPronosticoPrintsItsPeriods) {
  std::vector<std::string> tablas = MovementTables();
  tablas.insert(tablas.end(), {"cceAsientos", "cceAsientoCuenta", "cceComprobantes"});
  const auto antes = TakeSnapshot(*cn, tablas);
  const Json sim = RunJson({"ejecutar", "--simular", "--hasta", "10/02/2027"});
  EXPECT_EQ(TakeSnapshot(*cn, tablas), antes);
  ASSERT_GT(sim.size(), 10u);
  EXPECT_EQ(sim[0]["DocumentosSimulados"][0]["Lineas"][1]["Codigo"], "1.1.02");
  EXPECT_EQ(sim[0]["DocumentosSimulados"][0]["Lineas"][1]["Haber"], 540000.0);

  const Result csv = Run({"pronostico", "--cuentas", "1.1.02,1.1.03", "--desde", "2027-02-11",
                          "--hasta", "2027-05-10", "--csv"});
  ASSERT_EQ(csv.status, 0) << csv.err;
  std::vector<std::vector<std::string>> filas;
  std::istringstream lineas(csv.out);
  for (std::string linea; std::getline(lineas, linea);) {
    std::vector<std::string> campos;
    std::istringstream partes(linea);
    for (std::string c; std::getline(partes, c, ',');) campos.push_back(c);
    filas.push_back(std::move(campos));
  }
  ASSERT_EQ(filas.size(), 9u) << csv.out;  // header, 4 months of each account
  EXPECT_EQ(filas[0],
            (std::vector<std::string>{"Cuenta", "Codigo", "Nombre", "Desde", "Hasta",
                                      "SaldoInicial", "Entradas", "Salidas", "SaldoFinal"}));
  EXPECT_EQ(filas[1][3], "2027-02-11");
  EXPECT_EQ(filas[4][4], "2027-05-10");
  EXPECT_EQ(filas[5][0], "103");
  EXPECT_EQ(filas[1][8], filas[2][5]);
  EXPECT_TRUE(Has(csv.err, "recordatorio: 20/02/2027 10:00  Aviso 8: ")) << csv.err;
  // The demo's rent reads its occurrence count through a query: only the dry run can follow it.
  EXPECT_TRUE(Has(csv.err, "Calculado con la simulación de la corrida: el movimiento 1 tiene "))
      << csv.err;

  const Json js = RunJson({"pronostico", "--hasta", "31/12/2026", "--por", "semana"});
  EXPECT_EQ(js["Por"], "semana");
  EXPECT_EQ(js["Cuentas"][0]["Periodos"][0]["Hasta"], "15/11/2026");
  EXPECT_FALSE(js["Recordatorios"].empty());
  EXPECT_NE(js["PorSimulacion"], "");

  ExpectFails({"pronostico", "--hasta", "31/12/2026", "--por", "año"}, 2, "--por");
  const Result ambas = Run({"--json", "pronostico", "--hasta", "31/12/2026", "--csv"});
  EXPECT_EQ(ambas.status, 2);
  EXPECT_TRUE(Has(ambas.err, "--csv y --json no pueden ir juntas")) << ambas.err;
  ExpectFails({"pronostico"}, 2, "--hasta");
}

KMF_INSTANTIATE_ENGINES(MovfrecComandos);

}  // namespace

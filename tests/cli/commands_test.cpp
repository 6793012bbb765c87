// movfrec ver / exportar / importar / estado / borrar / realizar / agenda, run as a script would
// run them, on a fresh demo database per test.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli_db.h"

namespace {

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

  Json RunJson(const std::vector<std::string>& args) {
    std::vector<std::string> all = {"--json"};
    all.insert(all.end(), args.begin(), args.end());
    const Result r = Run(all);
    EXPECT_EQ(r.status, 0) << r.err;
    return r.status == 0 ? Json::parse(r.out) : Json();
  }

  Json Ver(int id) { return RunJson({"ver", std::to_string(id)}); }

  std::string Write(const std::string& text) {
    const std::string path = base_ + ".json";
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  // Runs SQL on the test database through the engine's shell; false when there is none.
  bool Sql(const std::string& sql) { return db_obj_->Sql(sql); }

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

TEST_P(MovfrecComandos, ImportThenExportRoundTripsAndUpdates) {
  const Json creados = RunJson({"importar", Write(kNuevo)});
  ASSERT_EQ(creados.size(), 1u);
  EXPECT_EQ(creados[0]["Nuevo"], true);
  const int id = creados[0]["ID"].get<int>();
  EXPECT_GT(id, 100);  // drawn from the table counter, above every demo key

  const Result exportado = Run({"exportar", std::to_string(id)});
  ASSERT_EQ(exportado.status, 0) << exportado.err;
  const Json a = Json::parse(exportado.out);
  ASSERT_EQ(a.size(), 1u);
  const Json& mov = a[0];
  std::vector<std::string> claves;
  for (const auto& [k, v] : mov["MovFrecuente"].items()) claves.push_back(k);
  EXPECT_EQ(claves, (std::vector<std::string>{"Estado",      "FechaEstado",    "Vista",
                                              "Detalle",     "Imagen",         "ID",
                                              "Empresa",     "Tipo",           "DelSistema",
                                              "Nombre",      "Memo",           "Ente",
                                              "Modalidad",   "TipoImporte",    "Moneda",
                                              "Recurrencia", "MovVinculado",   "OrdenMovVinculado",
                                              "UsuarioAlta", "UsuarioAutoriza"}));
  EXPECT_EQ(mov["MovFrecuente"]["ID"], id);
  EXPECT_EQ(mov["MovFrecuente"]["FechaEstado"], "05/11/2026 08:15:30");
  EXPECT_EQ(mov["MovFrecuente"]["Memo"], "Abono de &[FMes-1]\nSegunda línea");
  EXPECT_EQ(mov["MovFrecuente"]["UsuarioAutoriza"], 4);
  const Json& rec = mov["Recurrencia"];
  EXPECT_GT(rec["ID"].get<int>(), 100);
  EXPECT_EQ(mov["MovFrecuente"]["Recurrencia"], rec["ID"]);
  EXPECT_EQ(rec["Frecuencia"], "200001");
  EXPECT_EQ(rec["FechaProxima"], "15/12/2026 09:30");
  EXPECT_EQ(rec["FechaInicio"], "15/10/2026 09:30");
  EXPECT_EQ(rec["FechaFinal"], "15/06/2027");
  EXPECT_EQ(rec["EraNotificacion"], "12/12/2026 21:30");
  EXPECT_EQ(rec["NotificarDias"], 2.5);
  EXPECT_EQ(rec["Postergado"], 1.0);
  EXPECT_EQ(rec["NumOcurrencia"], 3);
  ASSERT_EQ(mov["Renglones"].size(), 2u);
  const Json& l1 = mov["Renglones"][0];
  EXPECT_EQ(l1["idMF"], id);
  EXPECT_EQ(l1["CuentaCodigo"], "5.1.05");
  EXPECT_EQ(l1["CuentaNombre"], "Servicios y honorarios");
  EXPECT_EQ(l1["ProyectoAbreviacion"], "ROS");
  EXPECT_EQ(l1["DepartamentoAbreviacion"], "VTA");
  EXPECT_EQ(l1["Moneda"], 1);
  EXPECT_EQ(l1["Orden"], 1);
  EXPECT_EQ(l1["AlDebe"], true);
  EXPECT_EQ(l1["ImporteCta"], 1234.56);
  EXPECT_EQ(l1["ImporteMF"], 0.1);
  EXPECT_EQ(l1["TipoCambio"], 2);
  EXPECT_EQ(l1["ValorTC"], 1425.75);
  const Json& l2 = mov["Renglones"][1];
  EXPECT_EQ(l2["Orden"], 2);
  EXPECT_EQ(l2["AlDebe"], false);
  EXPECT_EQ(l2["Formula"], "");
  EXPECT_EQ(l2["Detalle"], "");
  EXPECT_EQ(l2["TipoCambio"], 0);
  EXPECT_EQ(l2["ValorTC"], 0.0);
  EXPECT_EQ(l2["ProyectoAbreviacion"], "");

  // What exportar writes, importar takes back unchanged: byte for byte, same IDs.
  const size_t antes = Movements();
  const std::string archivo = Write(exportado.out);
  const Json actualizados = RunJson({"importar", archivo});
  ASSERT_EQ(actualizados.size(), 1u);
  EXPECT_EQ(actualizados[0]["ID"], id);
  EXPECT_EQ(actualizados[0]["Nuevo"], false);
  const Result otra_vez = Run({"exportar", std::to_string(id)});
  EXPECT_EQ(otra_vez.out, exportado.out);
  EXPECT_EQ(Movements(), antes);
  // ver --json is the same object.
  EXPECT_EQ(Ver(id), mov);

  // An update that drops the schedule and a line: the stored ones go too.
  Json sin_agenda = mov;
  sin_agenda["Recurrencia"] = nullptr;
  sin_agenda["Renglones"].erase(1);
  sin_agenda["Renglones"][0]["CuentaNombre"] = "ignorado al importar";
  RunJson({"importar", Write(sin_agenda.dump())});
  const Json despues = Ver(id);
  EXPECT_TRUE(despues["Recurrencia"].is_null());
  EXPECT_EQ(despues["MovFrecuente"]["Recurrencia"], 0);
  ASSERT_EQ(despues["Renglones"].size(), 1u);
  EXPECT_EQ(despues["Renglones"][0]["CuentaNombre"], "Servicios y honorarios");

  // The person's view names the account and the schedule in words.
  const Result texto = Run({"ver", "6"});
  ASSERT_EQ(texto.status, 0) << texto.err;
  EXPECT_NE(texto.out.find("Honorarios del estudio contable"), std::string::npos) << texto.out;
  EXPECT_NE(texto.out.find("Todos los meses"), std::string::npos) << texto.out;
  EXPECT_NE(texto.out.find("Servicios y honorarios"), std::string::npos) << texto.out;
}

TEST_P(MovfrecComandos, UnknownIdsAreRefused) {
  const Result ver = Run({"ver", "999"});
  EXPECT_EQ(ver.status, 1);
  EXPECT_NE(ver.err.find("no existe el movimiento frecuente 999"), std::string::npos) << ver.err;
  EXPECT_TRUE(ver.out.empty());
  const Result exportar = Run({"exportar", "1", "999"});
  EXPECT_EQ(exportar.status, 1);
  EXPECT_TRUE(exportar.out.empty()) << exportar.out;
  for (const char* cmd : {"estado", "borrar", "realizar"}) {
    std::vector<std::string> args = {"--responder", "si", cmd, "999"};
    if (std::string(cmd) == "estado") args.push_back("1");
    const Result r = Run(args);
    EXPECT_EQ(r.status, 1) << cmd;
    EXPECT_NE(r.err.find("no existe el movimiento frecuente 999"), std::string::npos) << r.err;
  }
  EXPECT_EQ(Run({"ver", "cero"}).status, 2);
}

TEST_P(MovfrecComandos, ImportIsAllOrNothing) {
  Json valido = Json::parse(kNuevo);
  Json malo = valido;
  malo["MovFrecuente"]["Tipo"] = 7;
  malo["MovFrecuente"]["Nombre"] = "Pago d'Alessandro";
  malo["MovFrecuente"]["Sobra"] = 1;
  malo["Recurrencia"]["FechaProxima"] = "31/02/2027";
  malo["Renglones"][1]["Cuenta"] = "111";
  malo["Renglones"][0]["AlDebe"] = 1;
  const Json lista = Json::array({valido, valido, malo});
  const size_t antes = Movements();

  const Result r = Run({"importar", Write(lista.dump(2))});
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(r.out.empty()) << r.out;
  for (const char* esperado : {
           "$[2].MovFrecuente.Tipo: tipo desconocido 7",
           "$[2].MovFrecuente.Nombre: no puede contener comillas simples",
           "$[2].MovFrecuente.Sobra: clave desconocida",
           "$[2].Recurrencia.FechaProxima: «31/02/2027» no es una fecha válida",
           "$[2].Renglones[1].Cuenta: se esperaba un número entero",
           "$[2].Renglones[0].AlDebe: se esperaba true o false",
           "no se importó ningún movimiento",
       }) {
    EXPECT_NE(r.err.find(esperado), std::string::npos) << esperado << "\n" << r.err;
  }
  EXPECT_EQ(r.err.find("$[0]"), std::string::npos) << r.err;
  EXPECT_EQ(Movements(), antes);

  // Refused before anything is written: an update of a movement that does not exist, the same
  // ID twice, another company's movement, a file that is not JSON, a file that is missing.
  Json inexistente = valido;
  inexistente["MovFrecuente"]["ID"] = 999;
  Json dos_veces = Ver(18);
  Json de_otra = Ver(23);
  de_otra["MovFrecuente"]["Empresa"] = 0;
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
           {"{\"MovFrecuente\": {", "no es JSON válido"},
           {"[1]", "$[0]: se esperaba un objeto JSON"},
       }) {
    const Result rc = Run({"importar", Write(c.texto)});
    EXPECT_EQ(rc.status, 1) << c.mensaje;
    EXPECT_NE(rc.err.find(c.mensaje), std::string::npos) << rc.err;
  }
  const Result falta = Run({"importar", base_ + ".no-existe.json"});
  EXPECT_EQ(falta.status, 1);
  EXPECT_NE(falta.err.find("no se puede leer el archivo"), std::string::npos) << falta.err;
  EXPECT_EQ(Movements(), antes);

  // A save that fails after two good ones (a trigger refuses the third header) leaves nothing:
  // the two updates are rolled back with the new movement, and so is the key counter.
  const std::string trigger =
      postgres()
          ? "CREATE FUNCTION falla() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN IF "
            "NEW.MFrNombre = 'Falla al grabar' THEN RAISE EXCEPTION 'rechazado'; END IF; RETURN "
            "NEW; END $$; CREATE TRIGGER falla BEFORE INSERT ON genMovimientosFrecuentes FOR "
            "EACH ROW EXECUTE FUNCTION falla();"
          : "CREATE TRIGGER falla BEFORE INSERT ON genMovimientosFrecuentes WHEN NEW.MFrNombre = "
            "'Falla al grabar' BEGIN SELECT RAISE(ABORT, 'rechazado'); END;";
  if (!Sql(trigger)) {
    ASSERT_FALSE(postgres()) << "psql no pudo crear el disparador";
    GTEST_SKIP() << "sin el programa sqlite3 no se puede provocar la falla a mitad de camino";
  }
  Json uno = Ver(18);
  uno["MovFrecuente"]["Nombre"] = "Cambiado 18";
  Json dos = Ver(24);
  dos["MovFrecuente"]["Nombre"] = "Cambiado 24";
  Json tres = valido;
  tres["MovFrecuente"]["Nombre"] = "Falla al grabar";
  const Result medio = Run({"importar", Write(Json::array({uno, dos, tres}).dump())});
  EXPECT_EQ(medio.status, 1);
  EXPECT_NE(medio.err.find("no se pudo grabar el movimiento $[2]"), std::string::npos) << medio.err;
  EXPECT_EQ(Ver(18)["MovFrecuente"]["Nombre"], "Distribución de servicios por sucursal");
  EXPECT_EQ(Ver(24)["MovFrecuente"]["Nombre"], "Flete mensual");
  EXPECT_EQ(Movements(), antes);
  const Json nuevo = RunJson({"importar", Write(kNuevo)});
  EXPECT_EQ(nuevo[0]["ID"], 101);  // the counter gave nothing away
}

TEST_P(MovfrecComandos, StateChangeAndDeleteAskFirst) {
  // Answered No: nothing changes, exit 1.
  const Result no_estado = Run({"--responder", "no", "estado", "1", "9"});
  EXPECT_EQ(no_estado.status, 1);
  EXPECT_NE(no_estado.err.find("¿Confirma enviar a la papelera?"), std::string::npos)
      << no_estado.err;
  EXPECT_EQ(Ver(1)["MovFrecuente"]["Estado"], 0);
  const Result no_borrar = Run({"--responder", "no", "borrar", "20"});
  EXPECT_EQ(no_borrar.status, 1);
  EXPECT_NE(no_borrar.err.find("¿Confirma eliminar el registro?"), std::string::npos);
  EXPECT_EQ(Ver(20)["MovFrecuente"]["ID"], 20);
  // No terminal and no --responder: the answer is No.
  EXPECT_EQ(Run({"estado", "1", "1"}).status, 1);
  EXPECT_EQ(Ver(1)["MovFrecuente"]["Estado"], 0);

  // A user without rights is refused by the component, shown as "[caption] text".
  const Result sin_derechos = Run({"--usuario", "2", "--responder", "si", "estado", "1", "9"});
  EXPECT_EQ(sin_derechos.status, 1);
  EXPECT_NE(sin_derechos.err.find("[Asistente de Asientos] Su usuario no está habilitado"),
            std::string::npos)
      << sin_derechos.err;
  EXPECT_EQ(Ver(1)["MovFrecuente"]["Estado"], 0);

  // Answered Yes.
  const Json cambiado = RunJson({"--responder", "si", "estado", "1", "9"});
  EXPECT_EQ(cambiado["Cambiado"], true);
  EXPECT_EQ(cambiado["Estado"], 9);
  EXPECT_EQ(cambiado["FechaEstado"].get<std::string>().substr(0, 10), "10/11/2026");  // --hoy
  EXPECT_EQ(Ver(1)["MovFrecuente"]["Estado"], 9);
  EXPECT_EQ(Run({"--responder", "si", "estado", "1", "3"}).status, 2);
  const Result borrado = Run({"--responder", "si", "borrar", "20"});
  EXPECT_EQ(borrado.status, 0) << borrado.err;
  EXPECT_EQ(Run({"ver", "20"}).status, 1);
}

TEST_P(MovfrecComandos, RealizarAdvancesTheSchedule) {
  // Monthly without end: next month, next occurrence, still pending.
  const Json r1 = RunJson({"realizar", "1"});
  EXPECT_EQ(r1["FechaProxima"], "10/12/2026");
  EXPECT_EQ(r1["NumOcurrencia"], 12);
  EXPECT_EQ(r1["Estado"], 0);
  EXPECT_EQ(r1["UltimaOcurrencia"], false);
  EXPECT_EQ(Ver(1)["Recurrencia"]["FechaProxima"], "10/12/2026");

  // Heading a linked group: the linked movement without schedule is listed, unchanged.
  const Json r25 = RunJson({"realizar", "25"});
  EXPECT_EQ(r25["FechaProxima"], "10/12/2026");
  ASSERT_EQ(r25["Vinculados"].size(), 1u);
  EXPECT_EQ(r25["Vinculados"][0]["ID"], 26);

  // Once only: done, and it cannot be done twice.
  const Json r9 = RunJson({"realizar", "9"});
  EXPECT_EQ(r9["Estado"], 1);
  EXPECT_EQ(r9["UltimaOcurrencia"], true);
  const Result otra = Run({"realizar", "9"});
  EXPECT_EQ(otra.status, 1);
  EXPECT_NE(otra.err.find("no está en proceso"), std::string::npos) << otra.err;
  const Result sin_agenda = Run({"realizar", "2"});
  EXPECT_EQ(sin_agenda.status, 1);
  EXPECT_NE(sin_agenda.err.find("no está agendado"), std::string::npos) << sin_agenda.err;

  const Result texto = Run({"realizar", "22"});
  ASSERT_EQ(texto.status, 0) << texto.err;
  EXPECT_NE(texto.out.find("próximo vencimiento 20/11/2026 09:00, ocurrencia 8"), std::string::npos)
      << texto.out;
}

// Unfolds iCalendar content lines (RFC 5545 §3.1), checking CRLF and the 75-octet limit.
std::vector<std::string> IcsLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t end = text.find("\r\n", pos);
    EXPECT_NE(end, std::string::npos) << "línea sin CRLF";
    if (end == std::string::npos) break;
    const std::string physical = text.substr(pos, end - pos);
    EXPECT_LE(physical.size(), 75u) << physical;
    EXPECT_EQ(physical.find('\n'), std::string::npos);
    if (!physical.empty() && physical[0] == ' ') {
      EXPECT_FALSE(lines.empty());
      if (!lines.empty()) lines.back() += physical.substr(1);
    } else {
      lines.push_back(physical);
    }
    pos = end + 2;
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
    vistos.push_back(std::string(e["Evento"] == "Vencimiento" ? "V" : "N") + " " +
                     e["Fecha"].get<std::string>() + " " + std::to_string(e["ID"].get<int>()));
    // Sorted by date (dd/mm/aaaa -> aaaammdd for the comparison).
    const std::string f = e["Fecha"].get<std::string>();
    const std::string clave = f.substr(6, 4) + f.substr(3, 2) + f.substr(0, 2) + f.substr(10);
    EXPECT_LE(previa, clave);
    previa = clave;
  }
  auto tiene = [&](const std::string& v) {
    return std::find(vistos.begin(), vistos.end(), v) != vistos.end();
  };
  for (const char* esperado : {
           "V 10/11/2026 1", "N 05/12/2026 1", "V 10/12/2026 1",  // monthly, 5 days' notice
           "V 20/11/2026 3", "V 20/12/2026 3",                    // ends 20/12/2026
           "N 18/11/2026 10:00 8", "V 20/11/2026 10:00 8",        // postponed 1 day
           "N 17/12/2026 10:00 8", "V 20/12/2026 10:00 8",        // next one is not
           "N 14/12/2026 15:30 9", "V 15/12/2026 15:30 9",        // once only
           "V 13/11/2026 09:00 22", "V 18/12/2026 09:00 22",      // weekly
           "N 29/11/2026 6", "V 01/12/2026 6",                    // two days' notice
       }) {
    EXPECT_TRUE(tiene(esperado)) << esperado;
  }
  for (const char* ausente : {"N 05/11/2026 1", "V 10/01/2027 1", "V 15/06/2026 09:00 21",
                              "V 31/12/2026 15", "V 06/11/2026 09:00 22"}) {
    EXPECT_FALSE(tiene(ausente)) << ausente;
  }
  EXPECT_TRUE(tiene("V 25/11/2026 " + std::to_string(nuevo)));
  EXPECT_TRUE(tiene("N 22/11/2026 12:00 " + std::to_string(nuevo)));  // 2.5 days before

  // The iCalendar file: one VEVENT per entry, with the required properties, escaped text.
  const std::vector<std::string> lines = IcsLines(Slurp(ics, false));
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines.front(), "BEGIN:VCALENDAR");
  EXPECT_EQ(lines.back(), "END:VCALENDAR");
  EXPECT_NE(std::find(lines.begin(), lines.end(), "VERSION:2.0"), lines.end());
  size_t eventos = 0;
  std::vector<std::string> uids;
  std::string props;
  bool dentro = false;
  const std::regex dtstart(R"(DTSTART(;VALUE=DATE:\d{8}|:\d{8}T\d{6}))");
  for (const std::string& l : lines) {
    if (l == "BEGIN:VEVENT") {
      EXPECT_FALSE(dentro);
      dentro = true;
      props.clear();
    } else if (l == "END:VEVENT") {
      ASSERT_TRUE(dentro);
      dentro = false;
      ++eventos;
      for (const char* p : {"UID:", "DTSTAMP:", "DTSTART", "SUMMARY:"}) {
        EXPECT_NE(props.find(std::string("\n") + p), std::string::npos) << p << props;
      }
    } else if (dentro) {
      props += "\n" + l;
      if (l.rfind("UID:", 0) == 0) uids.push_back(l);
      if (l.rfind("DTSTART", 0) == 0) {
        EXPECT_TRUE(std::regex_match(l, dtstart)) << l;
      }
      if (l.rfind("DTSTAMP:", 0) == 0) {
        EXPECT_TRUE(std::regex_match(l, std::regex(R"(DTSTAMP:\d{8}T\d{6}Z)"))) << l;
      }
    }
  }
  EXPECT_EQ(eventos, agenda.size());
  std::sort(uids.begin(), uids.end());
  EXPECT_EQ(std::adjacent_find(uids.begin(), uids.end()), uids.end()) << "UID repetido";
  const std::string resumen =
      "SUMMARY:Vencimiento: Revisión de ascensores\\, escaleras\\; y montacargas \\\\ del "
      "depósito de la calle Güemes número 1234";
  EXPECT_NE(std::find(lines.begin(), lines.end(), resumen), lines.end());
  EXPECT_NE(std::find(lines.begin(), lines.end(), "DTSTART:20261120T100000"), lines.end());
  EXPECT_NE(std::find(lines.begin(), lines.end(), "DTSTART;VALUE=DATE:20261110"), lines.end());
  bool descripcion = false;
  for (const std::string& l : lines) {
    if (l.rfind("DESCRIPTION:Abono de &[FMes-1]\\nSegunda línea\\n", 0) == 0) descripcion = true;
  }
  EXPECT_TRUE(descripcion);

  // Default range: today (--hoy) and the next 30 days; a text table for people.
  const Json defecto = RunJson({"agenda"});
  ASSERT_FALSE(defecto.empty());
  EXPECT_EQ(defecto.front()["Fecha"], "10/11/2026");
  EXPECT_EQ(defecto.back()["Fecha"], "10/12/2026");
  const Result texto = Run({"agenda", "--hasta", "2026-11-12"});
  ASSERT_EQ(texto.status, 0) << texto.err;
  EXPECT_EQ(texto.out.rfind("Fecha", 0), 0u) << texto.out;
  EXPECT_NE(texto.out.find("Alquiler mensual de oficina"), std::string::npos) << texto.out;
  const Result vacio = Run({"agenda", "--desde", "2030-01-01", "--hasta", "2030-01-02"});
  EXPECT_NE(vacio.out.find("No hay vencimientos ni avisos"), std::string::npos) << vacio.out;
  EXPECT_EQ(Run({"agenda", "--desde", "2026-12-01", "--hasta", "2026-11-01"}).status, 2);
}

// The agenda lists the very due dates that marking each occurrence done walks through.
TEST_P(MovfrecComandos, AgendaListsTheDatesRealizarWalksThrough) {
  Json mov = Json::parse(kNuevo);
  Json& rec = mov["Recurrencia"];
  rec["FechaInicio"] = rec["FechaProxima"] = "30/01/2024";
  rec["FechaFinal"] = "30/06/2024";
  rec["NumOcurrencia"] = 1;
  const Json id = RunJson({"importar", Write(mov.dump())})[0]["ID"];
  std::vector<std::string> agenda, realizadas = {"30/01/2024"};
  for (const Json& e : RunJson({"agenda", "--desde", "2024-01-01", "--hasta", "2024-12-31"})) {
    if (e["ID"] == id && e["Evento"] == "Vencimiento") agenda.push_back(e["Fecha"]);
  }
  for (int i = 0; i < 12; ++i) {  // until the last occurrence
    const Json r = RunJson({"realizar", id.dump()});
    if (r.value("UltimaOcurrencia", true)) break;
    realizadas.push_back(r["FechaProxima"]);
  }
  EXPECT_EQ(agenda, realizadas);
  EXPECT_EQ(agenda.size(), 6u);
  EXPECT_EQ(agenda.at(2), "30/03/2024");  // back on the 30th after February
}

// The main job posts what falls due once, even after an old export rewinds the schedules.
TEST_P(MovfrecComandos, EjecutarPostsEachOccurrenceOnceEvenAfterImportingAnOldExport) {
  const Result exportado = Run({"exportar", "1", "3", "4", "6", "25", "26"});
  ASSERT_EQ(exportado.status, 0) << exportado.err;
  const std::string viejo = Write(exportado.out);
  const Result r = Run({"ejecutar", "--hasta", "15/01/2027"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(Has(r.out,
                  "10/11/2026  25 Pago de cargas sociales: asiento 102 por 205.000,00; "
                  "asiento 103 del movimiento 26 por 205,00\n"))
      << r.out;
  ASSERT_EQ(Run({"importar", viejo}).status, 0);
  // Every occurrence finds the documents the first run wrote (the exchange difference of 31/12
  // had none) and none is written again.
  const Result otra = Run({"ejecutar", "--hasta", "2027-01-15"});
  EXPECT_TRUE(Has(otra.out,
                  "12 ocurrencias hasta el 15/01/2027: 1 ejecutadas, 11 ya generadas, "
                  "0 hechas en otra ejecución, 0 con error; 0 documentos.\n"))
      << otra.out;
  EXPECT_TRUE(Has(otra.out,
                  "10/12/2026  25 Pago de cargas sociales: ya generado: asiento 107 del "
                  "movimiento 26; la agenda avanza\n"))
      << otra.out;

  // An occurrence that cannot run unattended is reported, exit 1, and stays due; that
  // movement's later occurrences wait for it.
  ASSERT_TRUE(db_obj_->Sql(
      "Update genRenglonMovFrecuentes Set RMFFormula = '[11:Importe]' Where RMFMovimiento = 1 "
      "And RMFOrden = 1"));
  const Result falla = Run({"ejecutar", "--hasta", "2027-03-15"});
  EXPECT_EQ(falla.status, 1);
  EXPECT_TRUE(Has(falla.out, "10/02/2027  1 Alquiler mensual de oficina: no ejecutado: "))
      << falla.out;
  EXPECT_FALSE(Has(falla.out, "10/03/2027  1 ")) << falla.out;
  EXPECT_EQ(Ver(1)["Recurrencia"]["FechaProxima"], "10/02/2027");
  EXPECT_EQ(Run({"ejecutar", "--hasta", "31/02/2027"}).status, 2);
}

KMF_CLI_MOTORES(MovfrecComandos);

}  // namespace

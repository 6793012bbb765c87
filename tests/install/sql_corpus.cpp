#include "install/sql_corpus.h"

#include <initializer_list>
#include <string>
#include <utility>

namespace kivmovfrec::testing {

namespace {

using Fill = std::initializer_list<std::pair<std::string, std::string>>;

// Replaces every occurrence of each placeholder, as the lookup preparation does.
std::string Prepare(std::string text, Fill fill) {
  for (const auto& [from, to] : fill) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
      text.replace(at, from.size(), to);
  }
  return text;
}

const std::string kNoMatch = " = 'abc121ptokiv121cba'";

// ---- Movement header, lines, schedule -------------------------------------------------------

std::string LoadMovement(const std::string& id) {
  return "Select genMovimientosFrecuentes.*, genRenglonMovFrecuentes.*, genRecurrencias.*, " +
         std::string("CueID, CueCodigo, CueNombre, CueMoneda, ProAbreviacion, DepAbreviacion ") +
         "From (((((genMovimientosFrecuentes LEFT JOIN genRenglonMovFrecuentes ON "
         "genMovimientosFrecuentes.MFrID = genRenglonMovFrecuentes.RMFMovimiento) " +
         "LEFT JOIN cceCuentas ON genRenglonMovFrecuentes.RMFCuenta = cceCuentas.CueID) " +
         "LEFT JOIN cceProyectos ON genRenglonMovFrecuentes.RMFIDProyecto = "
         "cceProyectos.ProCodigo) " +
         "LEFT JOIN cceDepartamentos ON genRenglonMovFrecuentes.RMFIDDepartamento = "
         "cceDepartamentos.DepCodigo) " +
         "LEFT JOIN genRecurrencias ON genMovimientosFrecuentes.MFrRecurrencia = "
         "genRecurrencias.RecID) " +
         "Where MFrID = " + id + " Order By RMFOrden";
}

// ---- Formula catalogue lookups ---------------------------------------------------------------

const std::string kQTipo =
    "Select TCMCodigo, TCMNombre, TCMNombre From genTipoCotizacionMoneda Where (TCMCodigo "
    "[pFindID] or TCMNombre [pFindKey]) And (TCMIndice = 0 or TCMIndice Is Null) Order by "
    "TCMNombre";
const std::string kQMoneda =
    "Select MonID, RTrim(MonSimbolo), MonNombre + ' (' + RTrim(MonSimbolo) + ')' From genMonedas "
    "Where MonTipo = 1 And (MonID [pFindID] or MonSimbolo [pFindKey]) Order by MonNombre";
const std::string kQIndice =
    "Select MonID, RTrim(MonSimbolo), MonNombre + ' (' + RTrim(MonSimbolo) + ')' From genMonedas "
    "Where MonTipo = 2 And (MonID [pFindID] or MonSimbolo [pFindKey]) Order by MonNombre";
const std::string kQCuenta =
    "Select CueID, [pCodCta]CueNombre, [pCodCta]CueNombre From cceCuentas Where CueIDEmpresa = "
    "[pEmp] And (CueID [pFindID] or [pCodCta]CueNombre [pFindKey]) And CueEsCarpeta = 0 Order by "
    "CueNombre";
// The four movement lookups, each a literal of its own (blanks and letter case as stored).
const std::string kQMovCAF =
    "Select MFrID, MFrNombre as Key, MFrNombre From genMovimientosFrecuentes Where MFrTipo = 1 "
    "And MFrID <> [pIDMov] And  (MFrNombre [pFindKey] or MFrID [pFindID]) And MFrEstado = 0 And "
    "MFrEmpresa = [pEmp] And MFrRecurrencia Is Null Order by MFrNombre";
const std::string kQMovCCF =
    "Select MFrID, MFrNombre as Key, MFrNombre From genMovimientosFrecuentes Where MFrTipo = 2 "
    "And MFrID <> [pIDMov] And (MFrNombre [pFindKey] or MFrID [pFindID]) And MFrEstado = 0 And "
    "MFrEmpresa = [pEmp] And MFrRecurrencia Is Null Order by MFrNombre";
const std::string kQMovCAA =
    "Select MFrID, MFrNombre as Key, MFrNombre From genMovimientosFrecuentes Where MFrTipo = 1 "
    "And MFrID <> [pIDMov] And  (MFrNombre [pFindKey] or MFrID [pFindID]) And MFrEstado = 0 And "
    "MFrEmpresa = [pEmp] And MFrRecurrencia Is Not Null Order by MFrNombre";
const std::string kQMovCCA =
    "Select MFrID, MFrNombre as Key, MFrNombre From genMovimientosFrecuentes Where MFrTipo = 2 "
    "And MFrID <> [pIDMov] And (MFrNombre [pFindKey] or MFrID [pFindID]) And MFrEstado = 0 And "
    "MFrEmpresa = [pEmp] And MFrRecurrencia Is not Null Order by MFrNombre";
const std::string kQOcurr =
    "[query]Select RecNumOcurrencia From genMovimientosFrecuentes, genRecurrencias Where MFrID = "
    "[pIDMov] And MFrRecurrencia = RecID[/query]";

std::string QueryBlockBody(const std::string& block) {
  const std::string open = "[query]", close = "[/query]";
  return block.substr(open.size(), block.size() - open.size() - close.size());
}

// Display form of a line argument: account of a movement, project, department.
std::string LineArgument(const std::string& account, const std::string& movement,
                         const std::string& project, const std::string& department) {
  return "Select 1, CueCodigo, rTrim(CueNombre) From cceCuentas, genRenglonMovFrecuentes " +
         std::string(" Where CueID = ") + account +
         " And RMFCuenta = CueID And RMFMovimiento = " + movement + " Union All " +
         "Select 2, 0, ProAbreviacion From cceProyectos Where ProCodigo = " + project +
         " Union All " +
         "Select 3, 0, DepAbreviacion From cceDepartamentos Where DepCodigo = " + department;
}

// ---- Evaluator: documents generated from another movement ------------------------------------

std::string EntryDocument(const std::string& moneda, const std::string& date,
                          const std::string& id) {
  return "Select ACuIDAsiento as ID, ACuCuenta as IDCuenta, ACuProyecto as IDProyecto, "
         "ACuDepartamento as IDDepartamento," +
         moneda + " as Moneda, ACuImporteMC as ImporteCuenta, ACuDebe as Debe, ACuHaber as Haber" +
         " From cceAsientos, cceAsientoCuenta " +
         " Where AsiID = ACuIDAsiento And AsiEstado = 1 And AsiFechaModificado >= " + date +
         " And (AsiMovFrecuente = -2 OR AsiMovFrecuente = " + id + ")" + " Order by AsiID DESC";
}

std::string VoucherDocument(const std::string& date, const std::string& id) {
  return "Select CCuIDComprobante as ID, CCuIDCuenta as IDCuenta, CCuIDProyecto as IDProyecto, "
         "CCuIDDepartamento as IDDepartamento," +
         std::string(
             " CCuMoneda as Moneda, CCuImporteCuenta as ImporteCuenta, CCuDebe as Debe, "
             "CCuHaber as Haber") +
         " From cceComprobantes, cceComprobanteCuenta " + " Where ComID = CCuIDComprobante" +
         " And ComFechaModificacion >= " + date +
         " And (ComMovFrecuente = -2 OR ComMovFrecuente = " + id + ")" + " Order by ComID DESC";
}

// ---- Rates -----------------------------------------------------------------------------------

std::string RateRemainder(const std::string& date, const std::string& a, const std::string& b,
                          const std::string& t) {
  return std::string(" From genCotizacionesMoneda ") +
         " Where CMoFecha IN (Select MAX(CMoFecha) from genCotizacionesMoneda " +
         " Where CMoFecha <= " + date + " And CMoMoneda = " + a + " And CMoCotizaEn = " + b +
         " And CMoTipoCotizacion = " + t + ")" + " And CMoMoneda = " + a +
         " And CMoCotizaEn = " + b + " And CMoTipoCotizacion = " + t;
}

std::string DirectRate(const std::string& a, const std::string& b, const std::string& t,
                       const std::string& date) {
  return "Select Top 1 CMoFecha, CMoCompra, CMoVenta " + RateRemainder(date, a, b, t) +
         " UNION ALL " + "Select Top 1 CMoFecha, 1/CMoCompra, 1/CMoVenta " +
         RateRemainder(date, b, a, t);
}

// ---- Linked movements ------------------------------------------------------------------------

const std::string kLinkColumns =
    "Select MFrID, MFrTipo, MFrMovVinculado, MFrMVOrden, MFrNombre, EmpNombre, EmpID ";

std::string LinkCandidates(const std::string& edited, const std::string& type_filter,
                           const std::string& company_filter, const std::string& linked_ids) {
  std::string sql = kLinkColumns + " From genMovimientosFrecuentes, cceEmpresas " +
                    " Where MFrID <> " + edited +
                    " And MFrRecurrencia Is Null And MFrEmpresa = EmpID " +
                    " And (MFrDelSistema Is Null or MFrDelSistema = 0) And MFrEstado = 0";
  sql += type_filter;
  sql += company_filter;
  sql +=
      " And (MFrMovVinculado NOT IN (Select MFrMovVinculado From genMovimientosFrecuentes Where "
      "MFrRecurrencia is Not null And MFrMovVinculado Is Not Null) OR MFrMovVinculado IS NULL OR "
      "MFrMovVinculado = 0)";
  if (!linked_ids.empty()) {
    sql += " UNION ALL " + kLinkColumns + " From genMovimientosFrecuentes, cceEmpresas " +
           " Where MFrID IN (" + linked_ids + ") And MFrEmpresa = EmpID " + " And MFrEstado = 0";
  }
  sql += " Order by MFrNombre";
  return sql;
}

// ---- Task lists ------------------------------------------------------------------------------

std::string LoadTaskList(const std::string& id) {
  return "SELECT genRecurrencias.*, genMovimientosFrecuentes.MFrNombre, "
         "genMovimientosFrecuentes.MFrMemo, genMovimientosFrecuentes.MFrEmpresa, "
         "genMovimientosFrecuentes.MFrVista, genMovimientosFrecuentes.MFrEstado, " +
         std::string(
             "MFItem.MFrNombre As ItNo, MFItem.MFrMemo as ItCo, MFItem.MFrModalidad as ItIm, "
             "MFItem.MFrMovVinculado as ItSC, genMovimientosFrecuentes.MFrTipo, MFItem.MFrID "
             "as ItID, MFItem.MFrEstado as ItEst") +
         " FROM (genMovimientosFrecuentes LEFT JOIN genMovimientosFrecuentes AS MFItem ON "
         "(MFItem.MFrEnte = genMovimientosFrecuentes.MFrID AND MFItem.MFrTipo = 6))" +
         " INNER JOIN genRecurrencias ON genMovimientosFrecuentes.MFrRecurrencia = "
         "genRecurrencias.RecID" +
         " WHERE genMovimientosFrecuentes.MFrID = " + id +
         " And genMovimientosFrecuentes.MFrTipo = 5 Order by MFItem.MFrNombre";
}

// ---- Formula editor --------------------------------------------------------------------------

std::string MovementAccounts(const std::string& id) {
  return "Select CueID, RMFIDProyecto, RMFIDDepartamento, CueCodigo, CueNombre, ProAbreviacion, "
         "DepAbreviacion "
         " From ((( genRenglonMovFrecuentes "
         " Left Outer Join cceCuentas On genRenglonMovFrecuentes.RMFCuenta = cceCuentas.CueID)"
         " Left Outer Join cceProyectos On genRenglonMovFrecuentes.RMFIDProyecto = "
         "cceProyectos.ProCodigo)"
         " Left Outer Join cceDepartamentos On genRenglonMovFrecuentes.RMFIDDepartamento = "
         "cceDepartamentos.DepCodigo)"
         " Where RMFMovimiento = " +
         id;
}

std::vector<CorpusEntry> Build() {
  using K = CorpusKind;
  std::vector<CorpusEntry> c;
  auto add = [&c](std::string name, std::string sql, int rows, K kind = K::kSelect) {
    c.push_back(CorpusEntry{std::move(name), std::move(sql), kind, rows});
  };

  // Movement storage and load.
  add("header_by_id", "Select * from genMovimientosFrecuentes Where MFrID = " + std::string("1"),
      1);
  add("header_new_row", "Select * from genMovimientosFrecuentes Where MFrID = " + std::string("0"),
      0);
  add("lines_by_movement",
      "Select * From genRenglonMovFrecuentes Where RMFMovimiento = " + std::string("2"), 4);
  add("load_movement_with_lines_and_schedule", LoadMovement("1"), 2);
  add("load_movement_without_lines", LoadMovement("8"), 1);
  add("max_link_order",
      "Select Max(MFrMVOrden) From genMovimientosFrecuentes Where MFrMovVinculado = " +
          std::string("16"),
      1);
  add("mark_notices_seen",
      "Update genMovimientosfrecuentes Set MFrVista = 2 where MFrID <> " + std::string("8") +
          " And MFrEstado = 0 And MFrModalidad = " + "1",
      -1, K::kWrite);
  add("company", "Select * from cceEmpresas Where EmpID = " + std::string("1"), 1);
  add("settings",
      "Select * from genParametros " +
          std::string(" Where ParNombre In ('defBkColorObligatorio', 'defBDDateCharSQLs', "
                      "'defBDDateFormat', ") +
          "'sis_Multiusuario', 'sis_LibroAsientoResumen')",
      5);
  add("schedule_by_id", "Select * From genRecurrencias Where RecID = " + std::string("1"), 1);

  // Formula catalogue lookups, resolving an id and resolving a shown text.
  add("rate_types_by_id", Prepare(kQTipo, {{"[pFindID]", " = 1"}, {"[pFindKey]", kNoMatch}}), 1);
  add("rate_types_by_name",
      Prepare(kQTipo, {{"[pFindID]", kNoMatch}, {"[pFindKey]", " = 'Bancario'"}}), 1);
  add("rate_types_never_the_index_type",
      Prepare(kQTipo, {{"[pFindID]", " = 3"}, {"[pFindKey]", kNoMatch}}), 0);
  add("currencies_by_id", Prepare(kQMoneda, {{"[pFindID]", " = 2"}, {"[pFindKey]", kNoMatch}}), 1);
  add("currencies_by_symbol",
      Prepare(kQMoneda, {{"[pFindID]", kNoMatch}, {"[pFindKey]", " = 'U$S'"}}), 1);
  add("indices_by_id", Prepare(kQIndice, {{"[pFindID]", " = 5"}, {"[pFindKey]", kNoMatch}}), 1);
  add("indices_by_symbol", Prepare(kQIndice, {{"[pFindID]", kNoMatch}, {"[pFindKey]", " = 'CER'"}}),
      1);
  add("accounts_by_id",
      Prepare(
          kQCuenta,
          {{"[pEmp]", "1"}, {"[pCodCta]", ""}, {"[pFindID]", " = 101"}, {"[pFindKey]", kNoMatch}}),
      1);
  add("accounts_by_name",
      Prepare(kQCuenta, {{"[pEmp]", "1"},
                         {"[pCodCta]", ""},
                         {"[pFindID]", kNoMatch},
                         {"[pFindKey]", " = 'Sueldos y jornales'"}}),
      1);
  add("accounts_by_code_and_name",
      Prepare(kQCuenta, {{"[pEmp]", "1"},
                         {"[pCodCta]", "rTrim(CueCodigo) + ' ' + "},
                         {"[pFindID]", kNoMatch},
                         {"[pFindKey]", " = '1.1.01 Caja'"}}),
      1);
  add("accounts_never_a_folder",
      Prepare(
          kQCuenta,
          {{"[pEmp]", "1"}, {"[pCodCta]", ""}, {"[pFindID]", " = 100"}, {"[pFindKey]", kNoMatch}}),
      0);
  add("frequent_entries",
      Prepare(kQMovCAF, {{"[pEmp]", "1"},
                         {"[pIDMov]", "1"},
                         {"[pFindID]", kNoMatch},
                         {"[pFindKey]", " = 'Liquidación de sueldos'"}}),
      1);
  add("frequent_vouchers",
      Prepare(
          kQMovCCF,
          {{"[pEmp]", "1"}, {"[pIDMov]", "1"}, {"[pFindID]", " = 7"}, {"[pFindKey]", kNoMatch}}),
      1);
  add("scheduled_entries",
      Prepare(
          kQMovCAA,
          {{"[pEmp]", "1"}, {"[pIDMov]", "2"}, {"[pFindID]", " = 25"}, {"[pFindKey]", kNoMatch}}),
      1);
  add("scheduled_vouchers",
      Prepare(
          kQMovCCA,
          {{"[pEmp]", "1"}, {"[pIDMov]", "2"}, {"[pFindID]", " = 6"}, {"[pFindKey]", kNoMatch}}),
      1);
  add("movement_lookup_never_the_edited_one",
      Prepare(
          kQMovCAF,
          {{"[pEmp]", "1"}, {"[pIDMov]", "2"}, {"[pFindID]", " = 2"}, {"[pFindKey]", kNoMatch}}),
      0);
  add("occurrences_query_block", Prepare(QueryBlockBody(kQOcurr), {{"[pIDMov]", "1"}}), 1,
      K::kReadOnly);
  add("line_argument_display", LineArgument("102", "18", "1", "2"), 3);

  // Evaluator.
  add("other_movement_lines",
      "Select * from genRenglonMovFrecuentes Where RMFMovimiento = " + std::string("16"), 2);
  add("entry_generated_from_movement", EntryDocument("1", "'2026-10-10 08:00:00'", "1"), 2);
  add("entry_generated_sample_date", EntryDocument("1", "'2024-03-15 00:00:00'", "25"), 2);
  add("voucher_generated_from_movement", VoucherDocument("'2026-11-01 00:00:00'", "6"), 3);
  add("voucher_generated_sample_date", VoucherDocument("'2024-03-15 00:00:00'", "7"), 0);
  add("account_is_folder",
      "Select CueEsCarpeta from cceCuentas Where CueID = " + std::string("101"), 1);
  add("index_rate_type", "Select TCMCodigo From genTipoCotizacionMoneda Where TCMIndice = 1", 1);

  // Rates.
  add("currencies", "Select * From genMonedas", 5);
  add("rate_direct_only", DirectRate("2", "1", "1", "'2026-11-15 00:00:00'"), 1);
  add("rate_both_directions", DirectRate("2", "1", "2", "'2026-11-25 00:00:00'"), 2);
  add("rate_inverse_only", DirectRate("4", "1", "1", "'2026-11-15 00:00:00'"), 1);
  add("rate_none_before_date", DirectRate("2", "1", "1", "'2024-03-15 00:00:00'"), 0);
  add("quoted_in_pairs",
      "Select MonID, MonCotizaEn From genMonedas " +
          std::string(" Where MonTipo = 1 And MonCotizaEn Is Not Null"),
      3);

  // Wizard lists.
  add("books",
      "Select LibCodigo, LibNombre From genLibros Where LibDelSistema = 0 Order by LibNombre", 3);
  add("images", "Select IcoCodigo as Codigo, IcoNombre as Nombre from sisIconos Order by IcoNombre",
      4);
  add("voucher_types",
      "Select TCoCodigo, TCoNombre From cceTipoComprobante, sisClasificacionComprobante " +
          std::string(" Where TCoClasificacion = CCoCodigo ") + " And TCoIDEmpresa = " + "1" +
          " Order by TCoNombre",
      4);
  add("wizard_currencies",
      "Select MonID, MonNombre + ' (' + RTrim(MonSimbolo) + ')' as Nombre, MonSimbolo " +
          std::string(" From genMonedas ") + " Where MonTipo = 1 Order by MonNombre",
      4);
  add("authorising_users",
      "Select UsuCodigo, UsuIdentificacion From admUsuarios" +
          std::string(" Where UsuCodigo > 0  And UsuHabilitado <> 0"),
      3);
  add("voucher_type_chosen",
      "Select CCoVaAlDebe, CCoOperaContado, TCoNumeroObligatorio, CCoConQPagaCobra From "
      "cceTipoComprobante, sisClasificacionComprobante " +
          std::string(" Where TCoCodigo = ") + "1" + " And TCoClasificacion = CCoCodigo",
      1);

  // Saving from the wizard.
  add("linked_movements_check",
      "Select * From genMovimientosFrecuentes Where MFrID IN (" + std::string("16,17") + ")", 2);
  add("group_rows_but_this",
      "Select * From genMovimientosFrecuentes Where MFrMovVinculado = " + std::string("16") +
          " And MFrID <> " + "17",
      1);
  add("contact", "Select * from genEntes Where EntID = " + std::string("2"), 1);

  // Task lists.
  add("load_task_list_with_items", LoadTaskList("10"), 4);
  add("load_task_list_without_items", LoadTaskList("15"), 1);
  add("task_list_duplicate_name",
      "Select MFrID From genMovimientosFrecuentes Where MFrID <> " + std::string("0") +
          " And MFrNombre = '" + "Cierre contable mensual" +
          "' and MFrTipo = 5 And MFrEmpresa = " + "1" + " And MFrEstado = 0",
      1);
  add("precedes_by_id",
      "Select MFrID, MFrNombre " + std::string(" From genMovimientosFrecuentes Where MFrID = ") +
          "15",
      1);
  add("precedes_by_text",
      "Select MFrID, MFrNombre " +
          std::string(" From genMovimientosFrecuentes Where MFrTipo = 5 And MFrEmpresa = ") + "1" +
          " And MFrEstado = 0" + " And MFrNombre Like '" + "%" + "cierre%ejercicio" + "%'" +
          " And MFrID <> " + "10" + " And MFrUsuarioAlta = " + "1",
      1);
  add("task_list_items",
      "Select * From genMovimientosFrecuentes Where MFrEnte = " + std::string("10") +
          " And MFrTipo = 6 And MFrEstado <> 9",
      3);
  add("task_list_colours",
      "Select * from genParametros Where ParNombre = 'sis_colores_" + std::string("1") +
          "' And ParTexto = '" + "checklist" + "'",
      1);

  // Linked movements.
  add("link_candidates_all_types",
      LinkCandidates("2", " And MFrTipo In (1, 2, 4)", " And MFrEmpresa = 1", ""), 6);
  add("link_candidates_entries",
      LinkCandidates("2", " And MFrTipo In (1, 4)", " And MFrEmpresa = 1", ""), 4);
  add("link_candidates_vouchers",
      LinkCandidates("2", " And MFrTipo = 2", " And MFrEmpresa = 1", ""), 2);
  add("link_candidates_all_companies_with_links",
      LinkCandidates("2", " And MFrTipo In (1, 2, 4)", " And MFrEmpresa IN (1,2)", "16,17"), 9);
  add("link_group_members",
      kLinkColumns + " From genMovimientosFrecuentes, cceEmpresas " +
          " Where MFrMovVinculado IN (" + "16" + ")" + " And MFrEmpresa = EmpID " +
          " And (MFrDelSistema Is Null or MFrDelSistema = 0) And MFrEstado = 0",
      2);
  add("link_group_in_order",
      "Select * from genMovimientosFrecuentes Where MFrMovVinculado = " + std::string("25") +
          " And MFrID <> " + "25" + " Order By MFrMVOrden",
      1);
  add("companies", "Select EmpID from cceEmpresas", 2);

  // Formula editor and user picker.
  add("movement_accounts", MovementAccounts("18"), 3);
  add("movement_accounts_with_project", MovementAccounts("18") + " And RMFIDProyecto <> 0", 2);
  add("user_picker",
      "Select UsuCodigo, UsuIdentificacion, UsuNombres, UsuApellidos From admUsuarios Where "
      "UsuCodigo > 0 and UsuHabilitado <> 0 Order by UsuIdentificacion",
      3);
  return c;
}

}  // namespace

const std::vector<CorpusEntry>& SqlCorpus() {
  static const std::vector<CorpusEntry> corpus = Build();
  return corpus;
}

}  // namespace kivmovfrec::testing

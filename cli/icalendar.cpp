#include "icalendar.h"

#include <chrono>
#include <ctime>

#include <fmt/format.h>

#include "kivmovfrec/vb.h"

namespace kivmovfrec::cli {
namespace {

// A date property (DTSTART, DUE): a date alone at midnight, otherwise date and local time.
std::string PropiedadFecha(std::string_view nombre, Date d) {
  const vb::DateParts p = vb::Split(d);
  if (p.hour == 0 && p.minute == 0 && p.second == 0) {
    return fmt::format("{};VALUE=DATE:{:04}{:02}{:02}", nombre, p.year, p.month, p.day);
  }
  return fmt::format("{}:{:04}{:02}{:02}T{:02}{:02}{:02}", nombre, p.year, p.month, p.day, p.hour,
                     p.minute, p.second);
}

// Seconds since 1970-01-01 of a local date-time, read from its calendar fields.
int64_t Segundos(Date d) {
  const vb::DateParts p = vb::Split(d);
  const std::chrono::sys_days dia{std::chrono::year{p.year} / p.month / p.day};
  return int64_t{dia.time_since_epoch().count()} * 86400 + p.hour * 3600 + p.minute * 60 + p.second;
}

// FNV-1a, 64 bits: the same text gives the same value on every platform and run.
uint64_t Huella(std::string_view texto) {
  uint64_t h = 14695981039346656037ull;
  for (unsigned char c : texto) {
    h ^= c;
    h *= 1099511628211ull;
  }
  return h;
}

std::string BloqueTarea(const TareaIcs& t, std::string_view sello) {
  std::string out;
  out += Plegar("BEGIN:VTODO");
  out += Plegar("UID:" + t.uid);
  out += Plegar("DTSTAMP:" + std::string(sello));
  out += Plegar(PropiedadFecha("DUE", t.vence));
  out += Plegar("SUMMARY:" + EscaparTexto(t.resumen));
  if (!t.descripcion.empty()) out += Plegar("DESCRIPTION:" + EscaparTexto(t.descripcion));
  if (t.prioridad > 0) out += Plegar(fmt::format("PRIORITY:{}", t.prioridad));
  out += Plegar(t.completada ? "STATUS:COMPLETED" : "STATUS:NEEDS-ACTION");
  out += Plegar("END:VTODO");
  return out;
}

}  // namespace

std::string UidVencimiento(int32_t movimiento, Date vencimiento, int32_t empresa,
                           std::string_view base) {
  const vb::DateParts p = vb::Split(vencimiento);
  return fmt::format("mf{}-{:04}{:02}{:02}-e{}-{:016x}@movfrec.kivmovfrec", movimiento, p.year,
                     p.month, p.day, empresa, Huella(base));
}

std::string Duracion(int64_t segundos) {
  std::string out = segundos < 0 ? "-P" : "P";
  uint64_t resto = segundos < 0 ? -static_cast<uint64_t>(segundos) : segundos;
  const uint64_t dias = resto / 86400;
  resto %= 86400;
  if (dias > 0) out += fmt::format("{}D", dias);
  if (resto > 0 || dias == 0) {
    out += "T";
    if (resto >= 3600) out += fmt::format("{}H", resto / 3600);
    if (resto % 3600 >= 60) out += fmt::format("{}M", resto % 3600 / 60);
    if (resto % 60 > 0 || resto == 0) out += fmt::format("{}S", resto % 60);
  }
  return out;
}

std::string EscaparTexto(std::string_view texto) {
  std::string out;
  for (size_t i = 0; i < texto.size(); ++i) {
    const char c = texto[i];
    switch (c) {
      case '\\':
        out += "\\\\";
        break;
      case ';':
        out += "\\;";
        break;
      case ',':
        out += "\\,";
        break;
      case '\r':
        if (i + 1 < texto.size() && texto[i + 1] == '\n') ++i;
        out += "\\n";
        break;
      case '\n':
        out += "\\n";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string Plegar(std::string_view linea) {
  std::string out;
  size_t usados = 0;  // octets on the current physical line
  size_t i = 0;
  while (i < linea.size()) {
    // Length of the UTF-8 character starting at i.
    const unsigned char c = static_cast<unsigned char>(linea[i]);
    size_t n = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 1;
    if (i + n > linea.size()) n = linea.size() - i;
    if (usados + n > 75) {
      out += "\r\n ";
      usados = 1;
    }
    out.append(linea.substr(i, n));
    usados += n;
    i += n;
  }
  return out + "\r\n";
}

std::string SelloUtcAhora() {
  const std::time_t t = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm utc{};
  gmtime_r(&t, &utc);
  return fmt::format("{:04}{:02}{:02}T{:02}{:02}{:02}Z", utc.tm_year + 1900, utc.tm_mon + 1,
                     utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec);
}

std::string Calendario(const std::vector<EventoIcs>& eventos, std::string_view sello,
                       const std::vector<TareaIcs>& tareas) {
  std::string out;
  out += Plegar("BEGIN:VCALENDAR");
  out += Plegar("VERSION:2.0");
  out += Plegar("PRODID:-//kivMovFrec//movfrec agenda//ES");
  out += Plegar("CALSCALE:GREGORIAN");
  for (const EventoIcs& e : eventos) {
    out += Plegar("BEGIN:VEVENT");
    out += Plegar("UID:" + e.uid);
    out += Plegar("DTSTAMP:" + std::string(sello));
    out += Plegar(PropiedadFecha("DTSTART", e.inicio));
    out += Plegar("SUMMARY:" + EscaparTexto(e.resumen));
    if (!e.descripcion.empty()) out += Plegar("DESCRIPTION:" + EscaparTexto(e.descripcion));
    if (e.alarma) {
      out += Plegar("BEGIN:VALARM");
      out += Plegar("ACTION:DISPLAY");
      out += Plegar("DESCRIPTION:" + EscaparTexto(e.alarma_texto));
      out += Plegar("TRIGGER:" + Duracion(Segundos(*e.alarma) - Segundos(e.inicio)));
      out += Plegar("END:VALARM");
    }
    out += Plegar("END:VEVENT");
  }
  for (const TareaIcs& t : tareas) out += BloqueTarea(t, sello);
  out += Plegar("END:VCALENDAR");
  return out;
}

}  // namespace kivmovfrec::cli

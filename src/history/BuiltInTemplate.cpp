// The page of a service report as the program has it; a company may have its own.
#include "history/ServiceReport.h"

namespace kalivor::history {
namespace {

constexpr char kBuiltIn[] = R"(<!DOCTYPE html>
<html lang="de">
<head>
<meta charset="utf-8">
<title>{{titel}}</title>
<style>
body { font-family: Arial, Helvetica, sans-serif; font-size: 9.5pt; color: #000; }
h2 { margin-top: 16px; margin-bottom: 0; }
h3 { margin-top: 16px; margin-bottom: 4px; }
table.kopf { margin-bottom: 12px; }
table.unter { margin-top: 5px; }
p { margin-top: 0; margin-bottom: 4px; }
table.werte { margin-top: 5px; font-size: 8.5pt; border-collapse: collapse; }
table.werte th { text-align: left; font-weight: bold; border-bottom: 1px solid #000; }
table.werte td { border-bottom: 1px solid #bbb; }
.klein { font-size: 8pt; color: #333; }
</style>
</head>
<body>

<table class="kopf" width="100%" cellspacing="0" cellpadding="0">
<tr>
<td>{{briefkopf}}</td>
<td align="right">{{?briefbild}}<img src="{{briefbild}}" width="{{bildbreite}}" height="{{bildhoehe}}">{{/briefbild}}</td>
</tr>
</table>

<h2>{{titel}}</h2>

<table class="unter" width="100%" cellspacing="0" cellpadding="2">
<tr><td width="18%">Anlage</td><td><b>{{anlage}}</b>{{^anlage}}–{{/anlage}}</td></tr>
{{?ort}}<tr><td>Ort</td><td>{{ort}}</td></tr>{{/ort}}
{{?zuranlage}}<tr><td>Zur Anlage</td><td>{{zuranlage}}</td></tr>{{/zuranlage}}
{{#regler}}<tr><td>Regler</td><td>{{version}}{{?anlageart}}, Anlageart {{anlageart}}{{/anlageart}}, Geräteadresse {{adresse}}</td></tr>
{{/regler}}
<tr><td>Technik</td><td>{{techniker}}{{^techniker}}–{{/techniker}}</td></tr>
<tr><td>Datum</td><td>{{datum}}</td></tr>
</table>

{{?bemerkung}}
<h3>Bemerkung</h3>
<p>{{bemerkung}}</p>
{{/bemerkung}}

<h3>Vorgefundene und hinterlassene Werte</h3>
{{?werte}}
<table class="werte" width="100%" cellspacing="0" cellpadding="3">
<thead><tr><th width="22%">Gruppe</th><th width="38%">Parameter</th><th width="16%">vorgefunden</th><th width="16%">hinterlassen</th><th width="8%">Einheit</th></tr></thead>
<tbody>
{{#werte}}<tr><td>{{gruppe}}</td><td>{{name}}{{?regler}}<br><span class="klein">{{regler}}</span>{{/regler}}</td><td>{{vorgefunden}}{{^vorgefunden}}–{{/vorgefunden}}</td><td>{{hinterlassen}}{{^hinterlassen}}–{{/hinterlassen}}</td><td>{{einheit}}</td></tr>
{{/werte}}
</tbody>
</table>
{{/werte}}
{{^werte}}<p>Es wurde kein Wert geändert.</p>{{/werte}}

{{?aenderungen}}
<h3>Änderungen der Reihe nach</h3>
<table class="werte" width="100%" cellspacing="0" cellpadding="3">
<thead><tr><th width="16%">Zeit</th><th width="17%">Vorgang</th><th width="27%">Parameter</th><th width="12%">vorher</th><th width="12%">nachher</th><th width="16%">Zustand</th></tr></thead>
<tbody>
{{#aenderungen}}<tr><td>{{zeit}}</td><td>{{vorgang}}</td><td>{{name}}{{?einheit}} <span class="klein">({{einheit}})</span>{{/einheit}}{{?regler}}<br><span class="klein">{{regler}}</span>{{/regler}}</td><td>{{vorher}}{{^vorher}}–{{/vorher}}</td><td>{{nachher}}{{^nachher}}–{{/nachher}}</td><td>{{zustand}}</td></tr>
{{/aenderungen}}
</tbody>
</table>
{{/aenderungen}}

{{?bemerkungen}}
<h3>Bemerkungen zu den Vorgängen</h3>
<table class="werte" width="100%" cellspacing="0" cellpadding="3">
<tbody>
{{#bemerkungen}}<tr><td width="16%">{{zeit}}</td><td width="22%">{{techniker}}</td><td>{{text}}</td></tr>
{{/bemerkungen}}
</tbody>
</table>
{{/bemerkungen}}

<h3>Ablauf und Leitung</h3>
{{?eintraege}}
<table class="werte" width="100%" cellspacing="0" cellpadding="3">
<thead><tr><th width="16%">Zeit</th><th width="17%">Vorgang</th><th width="27%">Ergebnis</th><th width="40%">Leitung</th></tr></thead>
<tbody>
{{#eintraege}}<tr><td>{{zeit}}</td><td>{{vorgang}}</td><td>{{ergebnis}}</td><td>{{leitung}}{{^leitung}}–{{/leitung}}</td></tr>
{{/eintraege}}
</tbody>
</table>
{{/eintraege}}
{{^eintraege}}<p>Kein Eintrag gewählt.</p>{{/eintraege}}

<table width="100%" cellspacing="0" cellpadding="0">
<tr>
<td width="45%"><br><br><br><br>
<table width="100%" cellspacing="0" cellpadding="3"><tr><td style="border-top: 1px solid #000;">Datum, Technikerin/Techniker</td></tr></table>
</td>
<td width="10%"></td>
<td width="45%"><br><br><br><br>
<table width="100%" cellspacing="0" cellpadding="3"><tr><td style="border-top: 1px solid #000;">Datum, Kunde</td></tr></table>
</td>
</tr>
</table>

</body>
</html>
)";

}  // namespace

QByteArray BuiltInServiceTemplate() {
  return kBuiltIn;
}

}  // namespace kalivor::history

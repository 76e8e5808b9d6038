<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>HLibrary</name>
    <message>
        <source>PaperWindow</source>
        <translation>Papierwechsel</translation>
    </message>
    <message>
        <source>Insert a new sheet</source>
        <translation>Neues Blatt einlegen</translation>
    </message>
</context>
<context>
    <name>PrinterDriver</name>
    <message>
        <source>Serial Number: </source>
        <translation>Belegnummer: </translation>
    </message>
    <message>
        <source>Invoice Number:</source>
        <translation>Rechnungsnummer:</translation>
    </message>
    <message>
        <source>Delivery Number:</source>
        <translation>Lieferscheinnummer:</translation>
    </message>
    <message>
        <source>Date:</source>
        <translation>Datum:</translation>
    </message>
    <message>
        <source>Time:</source>
        <translation>Uhrzeit:</translation>
    </message>
    <message>
        <source>Table:</source>
        <translation>Tisch:</translation>
    </message>
    <message>
        <source>Waiter:</source>
        <translation>Kellner:</translation>
    </message>
    <message>
        <source>Note:</source>
        <translation>Notiz:</translation>
    </message>
    <message>
        <source>Credit:</source>
        <translation>Guthaben:</translation>
    </message>
    <message>
        <source>CUSTOMER</source>
        <translation>KUNDE</translation>
    </message>
    <message>
        <source>Telephone:</source>
        <translation>Telefon:</translation>
    </message>
    <message>
        <source>License Number:</source>
        <translation>USt-IdNr.:</translation>
    </message>
    <message>
        <source>Fiscal Code:</source>
        <translation>Steuernummer:</translation>
    </message>
    <message>
        <source>Num</source>
        <translation>Anz</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Bezeichnung</translation>
    </message>
    <message>
        <source>Price</source>
        <translation>Preis</translation>
    </message>
    <message>
        <source>Amount</source>
        <translation>Betrag</translation>
    </message>
    <message>
        <source>TOTAL</source>
        <translation>SUMME</translation>
    </message>
    <message>
        <source>    Amount not paid: </source>
        <translation>    Nicht bezahlt: </translation>
    </message>
    <message>
        <source>Taxable</source>
        <translation>Netto</translation>
    </message>
    <message>
        <source>TaxRate</source>
        <translation>Steuersatz</translation>
    </message>
    <message>
        <source>Tax</source>
        <translation>Steuer</translation>
    </message>
    <message>
        <source>SUMMARIES</source>
        <translation>ZUSAMMENFASSUNGEN</translation>
    </message>
    <message>
        <source>BeginDate: </source>
        <translation>Beginn: </translation>
    </message>
    <message>
        <source>EndDate: </source>
        <translation>Ende: </translation>
    </message>
    <message>
        <source>PREFISCAL SUMMARY</source>
        <translation>ZUSAMMENFASSUNG VORRECHNUNGEN</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Anzahl</translation>
    </message>
    <message>
        <source>RECEIPTS SUMMARY</source>
        <translation>ZUSAMMENFASSUNG BELEGE</translation>
    </message>
    <message>
        <source>Serials</source>
        <translation>Nummern</translation>
    </message>
    <message>
        <source>Amount not paid: </source>
        <translation>Nicht bezahlt: </translation>
    </message>
    <message>
        <source>Cash: </source>
        <translation>Bar: </translation>
    </message>
    <message>
        <source>Credit Card: </source>
        <translation>Kreditkarte: </translation>
    </message>
    <message>
        <source>Bancomat: </source>
        <translation>EC-Karte: </translation>
    </message>
    <message>
        <source>Other: </source>
        <translation>Sonstiges: </translation>
    </message>
    <message>
        <source>TAXRATE</source>
        <translation>SATZ</translation>
    </message>
    <message>
        <source>TAXABLE</source>
        <translation>NETTO</translation>
    </message>
    <message>
        <source>TAX</source>
        <translation>STEUER</translation>
    </message>
    <message>
        <source>AMOUNT</source>
        <translation>BETRAG</translation>
    </message>
    <message>
        <source>INVOICES SUMMARY</source>
        <translation>ZUSAMMENFASSUNG RECHNUNGEN</translation>
    </message>
    <message>
        <source>CANCELLED DOC SUMMARY</source>
        <translation>STORNIERTE BELEGE</translation>
    </message>
    <message>
        <source>SERIAL</source>
        <translation>NUMMER</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Payment</source>
        <translation>Zahlung</translation>
    </message>
    <message>
        <source>Invoice</source>
        <translation>Rechnung</translation>
    </message>
    <message>
        <source>Receipt</source>
        <translation>Beleg</translation>
    </message>
    <message>
        <source>Credit note</source>
        <translation>Gutschrift</translation>
    </message>
    <message>
        <source>Deposit</source>
        <translation>Anzahlung</translation>
    </message>
</context>
</TS>

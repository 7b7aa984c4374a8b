#pragma once

class Hostwarden;
class ShippedMaps;

// The main window's map rotation LSTMaps: Add opens the map selection; Remove, Clear and a
// double-click edit the rotation, and each edit rebuilds the options text and the count.
void CMDAddMap_Click(Hostwarden& w);
void CMDRemoveMaps_Click(Hostwarden& w);
void CMDClearMaps_Click(Hostwarden& w);
void LSTMaps_DblClick(Hostwarden& w);

// The map selection dialog. It opens on the stock levels of the current game type; the
// operator's picks survive a switch of source and reach the rotation only through OK.
void ShippedMaps_Form_Load(ShippedMaps& d);
void CMDShipped_Click(ShippedMaps& d);
void CMDCustom_Click(ShippedMaps& d);
// Read every custom pack of the game type into the catalogue.
void Set_Cust_CTF(ShippedMaps& d);
void Set_Cust_DM(ShippedMaps& d);
void CMDAdd_Click(ShippedMaps& d);
void LSTSHMaps_DblClick(ShippedMaps& d);
void CMDRemove_Click(ShippedMaps& d);
void LSTSelmaps_DblClick(ShippedMaps& d);
void ShippedMaps_CMDOK_Click(ShippedMaps& d);
void ShippedMaps_CMDCancel_Click(ShippedMaps& d);

#include "map/drawingScripts.h"

namespace {

using namespace Qt::StringLiterals;

const QString mapSetUp =
    u"mapObj = new AMap.Map(\"iCenter\",{"
    u"rotateEnable:true,"
    u"dragEnable:true,"
    u"zoomEnable:true,"
    u"resizeEnable:true"
    u"});"
    u"mapObj.plugin([\"AMap.ToolBar\"],function(){"
    u"    toolBar = new AMap.ToolBar();"
    u"    mapObj.addControl(toolBar); "
    u"});"
    u"mapObj.setLang(\"en\");"
    u"mapObj.plugin([\"AMap.MapType\"],function(){"
    u"    var mapType= new AMap.MapType({"
    u"\tdefaultType:0,"
    u"\tshowRoad:true "
    u"    });"
    u"    mapObj.addControl(mapType);"
    u"});"_s;

const QString markers =
    u"if (StartMarker!=null){StartMarker.setMap(null);}"
    u"StartMarker=new AMap.Marker({ "
    u"icon:\"start.png\","
    u"position:new AMap.LngLat(triangleCoords[0].lng,triangleCoords[0].lat),"
    u"offset:{x:-7,y:-20}"
    u"});"
    u"StartMarker.setMap(mapObj); "
    u"if (EndMarker!=null){EndMarker.setMap(null);}"
    u"EndMarker=new AMap.Marker({ "
    u"icon:\"end.png\","
    u"position:new AMap.LngLat(triangleCoords[triangleCoords.length-1].lng,"
    u"triangleCoords[triangleCoords.length-1].lat),"
    u"offset:{x:-7,y:-20}});"
    u"EndMarker.setMap(mapObj);"
    u"if (bermudaTriangle!=null){"
    u"bermudaTriangle.setMap(null);}"_s;

const QString wholeLine =
    u"bermudaTriangle=new AMap.Polyline({ "
    u"path:triangleCoords,   "
    u"strokeColor: \"#FF0000\","
    u"strokeOpacity:1,"
    u"strokeWeight:3, "
    u"geodesic:true,"
    u"strokeDasharray:[10,5]});  "
    u"bermudaTriangle.setMap(mapObj);"_s;

// The missing comma behind "strokeWeight:3" belongs to the text. Nothing evaluates this script
// today; whoever does first has to decide about the comma.
const QString pieces =
    u"var breakpoly=[];"
    u"var i=0;"
    u"for(i=0;i<bpa.length-1;++i){"
    u"if(i==0){"
    u"breakpoly=triangleCoords.slice(bpa[i],bpa[i+1]-1);}"
    u"else{breakpoly=triangleCoords.slice(bpa[i]+1,bpa[i+1]);}"
    u"bermudaTriangle = new AMap.Polyline({  "
    u"map:mapObj,"
    u"path: breakpoly, "
    u"strokeColor: \"#FF0000\","
    u"strokeOpacity: 1.0,"
    u"strokeWeight:3"
    u"geodesic:true,"
    u"strokeDasharray:[10,5]});"
    u"bermudaTriangle.setMap(mapObj);}"_s;

const QString fitView =
    u"if (mapObj !=null){"
    u"mapObj.setFitView(); } "_s;

}  // namespace

QString setGDMapPoly(const QString& polyStr, const QString& breakPointStr) {
  const bool whole = breakPointStr == u"1";
  QString script = mapSetUp + u"var triangleCoords=eval("_s + polyStr + u");"_s;
  if (!whole) {
    script += u"var bpa=eval("_s + breakPointStr + u");"_s;
  }
  return script + markers + (whole ? wholeLine : pieces) + fitView;
}

QString setMapPoly(const QString& /*polyStr*/, const QString& /*breakPointStr*/) {
  return u"var triangleCoords = polyStr;\r\ndocument.title='set Poly';\r\n"_s;
}

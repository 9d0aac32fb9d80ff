# The addresses that a build is made for. Whoever runs a site of their own sets these when configuring.
set(QUORVANE_WEB_SITE "http://quorvane.example" CACHE STRING "Web site, without a trailing slash")
set(QUORVANE_UPDATE_HOST "http://quorvane.example" CACHE STRING "Host of versions and database archive, http")
set(QUORVANE_UPLOAD_HOST "http://quorvane.example" CACHE STRING "Host of the upload script, http")
set(QUORVANE_SEARCH_SITE "https://www.google.com/search" CACHE STRING "Search site that answers /?q=")
set(QUORVANE_SOCIAL_PAGE_1 "http://quorvane.example/social/1" CACHE STRING "First social page")
set(QUORVANE_SOCIAL_PAGE_2 "http://quorvane.example/social/2" CACHE STRING "Second social page")
set(QUORVANE_MAIL "maintainers@quorvane.example" CACHE STRING "Maintainers' e-mail address")
# The public keys that sign databases, as quorvane-db keygen prints them, two between semicolons while one follows the
# other. Without any, databases are taken unsigned.
set(QUORVANE_UPDATE_KEY "" CACHE STRING "Public keys that sign databases")
foreach(key ${QUORVANE_UPDATE_KEY})
  string(LENGTH "${key}" length)
  if(NOT length EQUAL 44 OR NOT key MATCHES "^[A-Za-z0-9+/]+=$")
    message(FATAL_ERROR "QUORVANE_UPDATE_KEY holds no key of quorvane-db keygen: ${key}")
  endif()
endforeach()
string(JOIN " " QUORVANE_UPDATE_KEYS ${QUORVANE_UPDATE_KEY})
# The component under which software centres know the program.
set(QUORVANE_COMPONENT_ID "example.quorvane.quorvane" CACHE STRING "Component id, a reversed domain name")

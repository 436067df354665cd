<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_TW">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>正在搜尋範例</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>搜尋錯誤：請求傳回空物件</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>搜尋錯誤：請求傳回錯誤的資料 - 沒有 id 欄位</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>API 用戶端已就緒</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>儲存庫錯誤：找不到群組 ID - 無法取得範例</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>正在取得範例</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>取得錯誤：請求傳回空物件</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>取得錯誤：請求傳回錯誤的資料 - 沒有 projects 欄位</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>正在下載範例：%1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>無法下載圖片：%1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>網路錯誤：%1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>範例</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>描述</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>SDK 使用此檔案在歡迎畫面中顯示範例的圖片。
它不是範例的一部分。</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>此物件不是儲存庫：%1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>未註冊範例 %1 - 找不到使用此名稱的儲存庫：%2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>建立範例資訊清單時發生錯誤</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>API 用戶端尚未就緒 - 正在重新啟動</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>未下載範例 - 找不到使用此名稱的儲存庫：%1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>未下載範例 - 找不到使用此網址的儲存庫：%1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>未下載下列範例的資料：%1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>未儲存範例 %1 - 找不到使用此網址的儲存庫名稱：%2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>正在解壓縮範例：%1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>下載的檔案不是封存檔</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>解壓縮時發生錯誤</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>選擇要安裝的範例</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>篩選範例</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;名稱：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;描述：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;更新時間：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;位置：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>新增或移除所選儲存庫的範例</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>已安裝的範例</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>儲存庫：</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>所選儲存庫的名稱</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>已安裝範例的列表</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>篩選範例</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>從線上儲存庫新增範例</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>新增...</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>移除選取的已安裝範例</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>移除</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>線上更新</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>檢查間隔</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>檢查範例更新並下載新範例的時間間隔。
設為 0 將停用自動更新。</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>天</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;位置：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;更新時間：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;狀態：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;資料夾：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;連結：&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>已更新</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>有可用的更新</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>找不到範例</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>請檢查您的網路連線，稍後再試！</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>未選取範例</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>選取要移除的範例，按下「移除」按鈕，再按下「套用」按鈕以套用變更。</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>開啟位置...</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>範例</translation>
    </message>
</context>
</TS>
